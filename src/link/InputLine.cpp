// What stands in the printer's input line and was not ended: by a session that broke, or by bytes
// that were no line.

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qncomm {
namespace {

/// A line that takes no byte for so long takes none.
constexpr std::int32_t DeafMs = 100;

/// Bytes that a device does not drop: of a pseudo-terminal those that its other side was given to
/// read already.
constexpr std::size_t MostUndropped = 4096;

} // namespace

std::string_view LinkState::Spoiler() const {
    return inputLine == InputLine::MayHoldText ? Nonsense : std::string_view();
}

void LinkState::SpoilInputLine() {
    if (Spoiler().empty()) return;
    Serial().Write(std::string(Spoiler()).append(CrLf));
    inputLine = InputLine::Empty;
}

void LinkState::NoteSent(std::string_view text) {
    const auto content = std::min<std::uintmax_t>(loadMissing, text.size());
    loadMissing -= content;
    text.remove_prefix(static_cast<std::size_t>(content));
    echo.Sent(text);
    if (text.empty()) return;
    const bool ended = text.ends_with('\r') || text.ends_with('\n');
    inputLine = ended ? InputLine::Empty : InputLine::MayHoldText;
}

std::int32_t clsDataLink::EndUnfinishedLine(std::string_view sThen) {
    LinkState& state = *mState;
    if (!state.Serial().PortOpen()) return 0;
    const std::int32_t onTheWay = state.Serial().LineTimeLeft();
    const bool cut = onTheWay > 0 || state.Serial().TransmitCount() > 0;
    if (cut) PurgePort(); // what has not left keeps nobody waiting
    if (onTheWay > 0) state.inputLine = LinkState::InputLine::MayHoldText; // it is cut anywhere
    std::string last(cut && state.Spoiler().empty() ? CrLf : std::string_view());
    last.append(sThen);
    state.SpoilInputLine();
    state.Serial().Write(last);
    state.NoteSent(last);
    state.AwaitLastBytes(last.size());
    return std::min(onTheWay, state.TravelMs(MostUndropped));
}

void LinkState::AwaitLastBytes(std::size_t bytes) {
    Wait wait(host.loop, {.wholeMs = DeafMs + TravelMs(bytes), .silenceMs = DeafMs});
    std::int32_t waiting = Serial().TransmitCount();
    Await(wait, [&] {
        const std::int32_t before = std::exchange(waiting, Serial().TransmitCount());
        if (waiting < before) wait.Heard();
        return waiting <= 0;
    });
}

} // namespace qncomm

// What stands in the printer's input line and was not ended: by a session that broke, or by bytes
// that were no line.

#include "LinkState.h"
#include "common/Text.h"

#include <algorithm>
#include <cstdint>

namespace qncomm {
namespace {

/// Closes what was not opened: an error wherever it stands, so that no printer carries out a line
/// that ends in it.
constexpr std::string_view Nonsense = ")(";

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

void clsDataLink::EndUnfinishedLine() {
    if (mState->Serial().PortOpen()) mState->SpoilInputLine();
}

} // namespace qncomm

// Content that the printer takes byte by byte behind a command line, and what becomes of it when it
// breaks off.

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace qncomm {
namespace {

/// What is missing is sent as zeros when the line needs no longer for it; else nothing is, for as
/// long as a printer waits for the next byte.
constexpr std::int32_t LongestFillMs = 2000;
constexpr std::int32_t PrinterPatience = 10'000;
constexpr std::int32_t StoredTimeout = 5000; ///< a printer may write for a while
constexpr std::int32_t UndoTimeout = 2000;
/// Who gives a load up is not held up for longer than this by what the line still carries.
constexpr std::int32_t LongestWaitMs = 30'000;
/// What a device may keep of a program that has died: as much as a pseudo-terminal does.
constexpr std::uintmax_t MostKept = 65'536;
/// Behind the fill of another program's load: silence that ends the printer's refusals.
constexpr std::int32_t RefusalQuietMs = 100;
constexpr std::int32_t LongestQuietWait = 3000;

// Of the bytes that a device has taken, only so many can have reached the printer: a
// pseudo-terminal, a socket or an adapter keeps thousands of them.
double BytesIn(std::int32_t ms, const std::string& baudrate) {
    constexpr double bitsOfOne = 11;
    return std::max(Val(baudrate), 300.0) * ms / (1000 * bitsOfOne);
}

/// What a printer says at the end of a load; nothing before that.
std::optional<LoadEnd> EndIn(const std::string& said) {
    const std::size_t prompt = said.find("Ok\r\n");
    if (prompt == std::string::npos) return std::nullopt;
    return said.substr(0, prompt).find("Error") == std::string::npos ? LoadEnd::Stored
                                                                     : LoadEnd::Dropped;
}

} // namespace

void clsDataLink::BeginLoad(std::string_view sCommand, std::uintmax_t lBytes,
                            std::string_view sUndo) {
    const LoadNote note{lBytes, std::string(sUndo)};
    mState->NoteLoad(note);
    OutputText(std::string(sCommand));
    mState->loadUndo = note.undo;
    mState->loadSize = mState->loadMissing = lBytes;
    mState->loadSince.emplace(mState->host.loop);
    if (lBytes > 0) mState->live.Printer(PrinterReceiving, LearntCommand);
}

std::uintmax_t clsDataLink::LoadSize() const {
    return mState->loadSize;
}

std::uintmax_t clsDataLink::LoadBytes() const {
    const std::uintmax_t sent = mState->loadSize - mState->loadMissing;
    if (!mState->loadSince) return sent;
    const double travelled = BytesIn(mState->loadSince->ElapsedMs(), mState->baudrate);
    return std::min(sent, static_cast<std::uintmax_t>(travelled));
}

std::int32_t clsDataLink::DeafMs() const {
    return mState->deafSince ? mState->deafSince->UntilExceeds(mState->deafMs) : 0;
}

LoadEnd clsDataLink::GiveUpLoad() {
    const std::int32_t onTheWay = mState->Serial().LineTimeLeft();
    const std::uintmax_t missing = std::exchange(mState->loadMissing, 0);
    if (missing == 0 && (!mState->loadSince || mState->outOfStep)) return LoadEnd::Whole;
    mState->DeafFor(onTheWay + PrinterPatience);
    if (!mState->Serial().PortOpen() || mState->outOfStep) return LoadEnd::Deaf; // all is said
    const LoadEnd end =
        mState->EndLoad({.bytes = std::string(static_cast<std::size_t>(missing), '\0'),
                         .travelMs = onTheWay + mState->TravelMs(missing)},
                        LongestWaitMs);
    if (end == LoadEnd::Stored) mState->UndoLoad(mState->loadUndo);
    return end;
}

void LinkState::DeafFor(std::int32_t ms) {
    deafMs = ms;
    deafSince.emplace(host.loop);
}

LoadEnd LinkState::EndLoad(const RestOfLoad& rest, std::int32_t longestMs) {
    ClearReceived();
    if (rest.travelMs > LongestFillMs) return AwaitEndOfLoad(longestMs);
    link.OutputText(rest.bytes + rest.lastLine);
    const std::int32_t limit = rest.travelMs + StoredTimeout;
    const std::string_view behind = rest.lastLine;
    const std::string said =
        ReadToPrompt(limit, limit, received, behind.substr(0, behind.find(CrLf)));
    const auto end = EndIn(said);
    if (end) ForgetDeafness();
    return end.value_or(LoadEnd::Deaf);
}

LoadEnd LinkState::AwaitEndOfLoad(std::int32_t longestMs) {
    std::optional<LoadEnd> end;
    if (const std::int32_t left = link.DeafMs(); left > 0) {
        ReportStatus("The printer stays deaf for up to " + ToText((left + 500) / 1000)
                         + " s: it waits for the rest of a load",
                     -1);
        if (left > longestMs) return LoadEnd::Deaf;
        end = EndIn(ReadToPrompt(left, left));
        if (!end && link.DeafMs() > 0) return LoadEnd::Deaf;
    }
    ForgetDeafness();
    return end.value_or(LoadEnd::Dropped);
}

void LinkState::ForgetDeafness() {
    deafSince.reset();
    loadSince.reset();
    ForgetLoad();
}

void LinkState::UndoLoad(const std::string& undo) {
    if (undo.empty()) return;
    link.OutputText(undo + std::string(CrLf));
    std::vector<std::string> reply;
    link.InputText(reply, true, UndoTimeout);
}

LoadEnd LinkState::EndLoadOfAnother(const LoadNote& note) {
    inputLine = InputLine::MayHoldText;     // a printer that lacks little is typed what is too much
    if (const auto end = EndIn(received)) { // little indeed: what was sent in greeting was enough
        AwaitQuiet(RefusalQuietMs, LongestQuietWait);
        return *end;
    }
    const std::int32_t travel = TravelMs(note.bytes);
    DeafFor(std::min(travel, TravelMs(MostKept)) + PrinterPatience);
    ReportStatus("A load of " + std::to_string(note.bytes)
                     + " bytes was broken off: bringing the printer back",
                 -1);
    const std::string bytes(static_cast<std::size_t>(std::min(note.bytes, MostKept)), '\0');
    // The number tells its echo from that of the greeting, which may come late.
    const std::string last =
        std::string(Spoiler()) + std::to_string(note.bytes) + std::string(CrLf);
    // As much again may still be on its way from the program that has died.
    const LoadEnd end = EndLoad({.bytes = bytes, .travelMs = travel, .lastLine = last},
                                std::numeric_limits<std::int32_t>::max());
    AwaitQuiet(RefusalQuietMs, LongestQuietWait);
    return end;
}

} // namespace qncomm

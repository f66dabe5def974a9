// Content that the printer takes byte by byte behind a command line, and what becomes of it when it
// breaks off.

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

/// What is missing is sent as zeros when the line needs no longer for it; else nothing is, for as
/// long as a printer waits for the next byte.
constexpr std::int32_t LongestFillMs = 2000;
constexpr std::int32_t PrinterPatience = 10'000;
constexpr std::int32_t StoredTimeout = 5000; ///< a printer may write for a while

// Of the bytes that a device has taken, only so many can have reached the printer: a
// pseudo-terminal, a socket or an adapter keeps thousands of them.
double BytesIn(std::int32_t ms, const std::string& baudrate) {
    constexpr double bitsOfOne = 11;
    return std::max(Val(baudrate), 300.0) * ms / (1000 * bitsOfOne);
}

std::int32_t TravelMs(std::uintmax_t bytes, const std::string& baudrate) {
    return ToInt32(static_cast<double>(bytes) / BytesIn(1, baudrate));
}

bool HasPrompt(const std::string& text) {
    return text.find("Ok\r\n") != std::string::npos;
}

} // namespace

void clsDataLink::BeginLoad(std::uintmax_t lBytes) {
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
    if (missing == 0) return LoadEnd::Whole;
    mState->deafMs = onTheWay + PrinterPatience;
    mState->deafSince.emplace(mState->host.loop);
    if (!mState->Serial().PortOpen() || mState->outOfStep) return LoadEnd::Deaf; // all is said
    mState->ClearReceived();
    const std::int32_t fill = onTheWay + TravelMs(missing, mState->baudrate);
    if (fill > LongestFillMs) {
        mState->AwaitEndOfLoad();
        return mState->deafSince ? LoadEnd::Deaf : LoadEnd::Dropped;
    }
    OutputText(std::string(static_cast<std::size_t>(missing), '\0'));
    const std::string said = mState->ReadToPrompt(fill + StoredTimeout, fill + StoredTimeout);
    if (!HasPrompt(said)) return LoadEnd::Deaf;
    mState->deafSince.reset();
    return said.find("Error") != std::string::npos ? LoadEnd::Dropped : LoadEnd::Stored;
}

void LinkState::AwaitEndOfLoad() {
    const std::int32_t left = link.DeafMs();
    if (left > 0) {
        ReportStatus("The printer stays deaf for up to " + ToText((left + 500) / 1000)
                         + " s: it waits for the rest of a load",
                     -1);
        if (!HasPrompt(ReadToPrompt(left, left)) && link.DeafMs() > 0) return;
    }
    deafSince.reset();
}

} // namespace qncomm

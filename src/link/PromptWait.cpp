// Waiting for the printer's prompt after a transfer has been cancelled.

#include "DetachedSink.h"
#include "LinkState.h"
#include "common/Numbers.h"
#include "common/StopWatch.h"

#include <algorithm>

namespace qncomm {
namespace {

constexpr std::string_view Prompt = "Ok\r\n";
/// What a printer that takes its bytes at once needs to come to its prompt.
constexpr std::int32_t PromptMs = 400;
/// A line that still carries something is not waited for any longer.
constexpr std::int32_t MostMs = 15'000;

/// How long a printer may say nothing while it takes what is on its way: two thousand bytes at the
/// line's rate, the most that travels between two acknowledgements on a slow line.
std::int32_t SilenceMs(const std::string& baudrate) {
    constexpr double bitsOnTheWay = 2000 * 11;
    return PromptMs
           + static_cast<std::int32_t>(1000 * bitsOnTheWay / std::max(Val(baudrate), 300.0));
}

} // namespace

bool clsDataLink::AwaitPrompt(bool bMoving) {
    const DetachedSink detached(*mState); // what comes is read here
    const std::int32_t silenceMs = bMoving ? SilenceMs(mState->baudrate) : PromptMs;
    const StopWatch whole(mState->host.loop);
    StopWatch silence(mState->host.loop);
    std::string text = mState->Serial().Read();
    while (text.find(Prompt) == std::string::npos) {
        const std::int32_t left =
            std::min(silence.UntilExceeds(silenceMs), whole.UntilExceeds(MostMs));
        if (!mState->Serial().PortOpen()) return false;
        if (left == 0) {
            mState->live.Printer(text.empty() ? PrinterSilent : PrinterUnknown, LearntSilence);
            return false;
        }
        mState->Yield(left);
        const std::string more = mState->Serial().Read();
        if (!more.empty()) silence.Restart();
        text += more;
    }
    mState->live.Printer(PrinterAtPrompt, LearntText);
    return true;
}

} // namespace qncomm

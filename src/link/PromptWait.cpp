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

std::string LinkState::ReadToPrompt(std::int32_t silence, std::int32_t longest, std::string text,
                                    std::string_view behind) {
    const DetachedSink detached(*this); // what comes is read here
    const StopWatch whole(host.loop);
    StopWatch quiet(host.loop);
    text += Serial().Read();
    const auto prompted = [&] {
        const std::size_t from = text.find(behind);
        return from != std::string::npos && text.find(Prompt, from) != std::string::npos;
    };
    while (!prompted()) {
        const std::int32_t left =
            std::min(quiet.UntilExceeds(silence), whole.UntilExceeds(longest));
        if (!Serial().PortOpen()) return text;
        if (left == 0) {
            live.Printer(text.empty() ? PrinterSilent : PrinterUnknown, LearntSilence);
            return text;
        }
        Yield(left);
        const std::string more = Serial().Read();
        if (!more.empty()) quiet.Restart();
        text += more;
    }
    live.Printer(PrinterAtPrompt, LearntText);
    return text;
}

bool clsDataLink::AwaitPrompt(bool bMoving) {
    const std::int32_t silenceMs = bMoving ? SilenceMs(mState->baudrate) : PromptMs;
    return mState->ReadToPrompt(silenceMs, MostMs).find(Prompt) != std::string::npos;
}

} // namespace qncomm

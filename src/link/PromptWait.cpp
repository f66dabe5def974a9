// Waiting for the printer's prompt after a transfer.

#include "DetachedSink.h"
#include "LinkState.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view Prompt = "Ok\r\n";
/// What a printer that takes its bytes at once needs to come to its prompt.
constexpr std::int32_t PromptMs = 400;
/// A line that still carries something is not waited for any longer.
constexpr std::int32_t LongestPromptMs = 15'000;
/// Who talks on for this long behind what was on its way, and behind what is said of that, has no
/// prompt to give.
constexpr std::int32_t MostTalkMs = 1000;
/// No printer says more before its prompt, be it the echo of a load's rest.
constexpr std::size_t MostTalkBytes = std::size_t{256} * 1024;

/// Looks for the prompt in what comes in pieces.
class PromptFinder {
  public:
    /// text came before; with behind, a prompt counts behind that alone.
    explicit PromptFinder(std::string text = {}, std::string_view behind = {})
        : mText(std::move(text)), mBehind(behind) {}

    /// Whether the text so far holds it, more included.
    bool Feed(std::string_view more) {
        mText += NormalizeLineEnds(more);
        if (!Find(mBehind)) return false;
        mBehind = {}; // from here on the prompt alone is looked for
        return mFound = mFound || Find(Prompt);
    }
    bool Found() const { return mFound; }
    std::string& Text() { return mText; }

  private:
    /// Looks on from where it has looked before.
    bool Find(std::string_view what) {
        const std::size_t at = mText.find(what, mLooked);
        if (at != std::string::npos) {
            mLooked = at;
            return true;
        }
        mLooked = std::max(mLooked, mText.size() - std::min(mText.size(), what.size() - 1));
        return false;
    }

    std::string mText;
    std::string_view mBehind;
    std::size_t mLooked = 0;
    bool mFound = false;
};

/// How long a printer may say nothing while it takes what is on its way: two thousand bytes at the
/// line's rate, the most that travels between two acknowledgements on a slow line.
std::int32_t OnTheWayMs(const std::string& baudrate) {
    constexpr double bitsOnTheWay = 2000 * 11;
    return static_cast<std::int32_t>(1000 * bitsOnTheWay / std::max(Val(baudrate), 300.0));
}

} // namespace

std::string LinkState::ReadToPrompt(std::int32_t silence, std::int32_t longest, std::string text,
                                    std::string_view behind) {
    const DetachedSink detached(*this); // what comes is read here
    PromptFinder prompt(std::move(text), behind);
    Wait wait(host.loop, {.wholeMs = longest, .silenceMs = silence, .bytes = MostTalkBytes});
    Await(wait, [&] {
        const std::string more = Serial().Read();
        wait.Came(more.size());
        return prompt.Feed(more) || !Serial().PortOpen();
    });
    if (prompt.Found())
        live.Printer(PrinterAtPrompt, LearntText);
    else if (Serial().PortOpen())
        live.Printer(prompt.Text().empty() ? PrinterSilent : PrinterUnknown, LearntSilence);
    return std::move(prompt.Text());
}

bool clsDataLink::WaitForOk(std::int32_t lTimeout) {
    PromptFinder prompt;
    SerialControl& serial = mState->Serial();
    Wait wait(mState->host.loop,
              {.wholeMs = LongestPromptMs, .silenceMs = lTimeout, .bytes = MostTalkBytes});
    wait.Until(
        [&] {
            const std::string more = serial.Read();
            wait.Came(more.size());
            return prompt.Feed(more) || !serial.PortOpen(); // a lost line says nothing more
        },
        [&](std::int32_t ms) { serial.WaitForReceive(ms); });
    if (prompt.Found()) mState->live.Printer(PrinterAtPrompt, LearntText);
    return prompt.Found();
}

bool clsDataLink::AwaitPrompt(bool bMoving) {
    return AwaitPromptBehind(bMoving ? OnTheWayMs(mState->baudrate) : 0);
}

bool clsDataLink::AwaitPromptBehind(std::int32_t lOnTheWay) {
    const std::int32_t most =
        std::min(2 * std::min(lOnTheWay, LongestPromptMs) + MostTalkMs, LongestPromptMs);
    // A handler that cancels was the cause: whoever wants to wait no longer ends the loop's Yield.
    mState->ReportStatus(
        "Waiting for the printer's prompt, for up to " + ToText((most + 500) / 1000) + " s", -1);
    return mState->ReadToPrompt(lOnTheWay + PromptMs, most).find(Prompt) != std::string::npos;
}

} // namespace qncomm

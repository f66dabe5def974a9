// The exchange: a command line goes out, its reply comes back, an error in it is raised.

#include "LinkState.h"
#include "PrinterError.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t SendTimeout = 5000;
constexpr std::int32_t DrainTimeout = 10000;
constexpr std::int32_t EchoTimeout = 500;
constexpr std::string_view PromptText = "Ok";
constexpr std::string_view OutputSource = "Datalink:OutputText";
constexpr std::string_view InputSource = "Datalink:InputText";

/// Erases what was sent from the caller's text, also when an error ends the sending.
class SentPrefix {
  public:
    explicit SentPrefix(std::string& text) : mText(text) {}
    ~SentPrefix() { mText.erase(0, mSent); }
    SentPrefix(const SentPrefix&) = delete;
    SentPrefix& operator=(const SentPrefix&) = delete;

    std::string_view Left() const { return std::string_view(mText).substr(mSent); }
    void Advance(std::size_t bytes) { mSent += bytes; }

  private:
    std::string& mText;
    std::size_t mSent = 0;
};

/// Of two times in ms, as far as there is time.
std::int32_t Sum(std::int32_t one, std::int32_t other) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{one} + other, WaitBounds::Endless));
}

} // namespace

void clsDataLink::OutputText(std::string& sText, bool bWaitForEcho) {
    const bool endsALine = sText.find('\n') != std::string::npos;
    mState->Queue(sText);
    if (endsALine) mState->live.Told();
    Wait wait(mState->host.loop, {.wholeMs = DrainTimeout});
    mState->AwaitOutput(wait, [this] { return mState->Serial().TransmitCount() <= 0; });
    if (bWaitForEcho) mState->WaitForEcho();
}

WaitBounds LinkState::BoundsOfSending(std::size_t bytes, std::int32_t silence) const {
    // A peer that lets a byte through now and then does not hold us for ever.
    constexpr std::int32_t pauses = 600'000;
    return {.wholeMs = Sum(pauses, TravelMs(bytes)), .silenceMs = silence};
}

void LinkState::Queue(std::string& text) {
    SentPrefix sent(text);
    Wait wait(host.loop, BoundsOfSending(text.size(), SendTimeout));
    const auto space = [this] { return Serial().TransmitBufferSize() - Serial().TransmitCount(); };
    RequireWritable();
    while (!sent.Left().empty()) {
        AwaitOutput(wait, [&] { return space() > 0; });
        const std::string_view piece = sent.Left().substr(0, static_cast<std::size_t>(space()));
        Serial().Write(piece);
        NoteSent(piece);
        sent.Advance(piece.size());
        wait.Heard();
    }
}

void LinkState::OutputPart(std::string_view text) {
    std::string part(text);
    Queue(part);
    Wait wait(host.loop, BoundsOfSending(text.size(), SendTimeout));
    std::int32_t waiting = Serial().TransmitCount();
    AwaitOutput(wait, [&] {
        if (Serial().TransmitCount() < std::exchange(waiting, Serial().TransmitCount()))
            wait.Heard();
        return waiting <= 0;
    });
}

void LinkState::AwaitOutput(Wait& wait, const std::function<bool()>& done) {
    if (done()) return;
    const auto sent = [&] {
        RequireWritable();
        return done();
    };
    const WaitEnd end = wait.Until(sent, [this](std::int32_t ms) { Yield(ms); });
    if (end != WaitEnd::Met) Fail(ErrOutputTimeout, OutputSource);
}

void LinkState::RequireWritable() {
    if (!Serial().PortOpen()) Fail(ErrPortNotOpen, OutputSource);
}

void LinkState::WaitForEcho() {
    if (Serial().ReceiveThreshold() == 0) {
        link.WaitForEchoLine({}, EchoTimeout);
        return;
    }
    // The line stays in the receive buffer: it is index 0 of the reply.
    Await({.wholeMs = EchoTimeout}, [this] { return BeginsWithEcho() || !Serial().PortOpen(); });
}

std::int32_t clsDataLink::InputText(std::vector<std::string>& sInputLines, bool bNoQNErrorCheck,
                                    std::int32_t lTimeout) {
    mState->AwaitReply(lTimeout, {});
    return bNoQNErrorCheck ? mState->TakeReceivedLines(sInputLines)
                           : mState->TakeReply(sInputLines);
}

std::int32_t clsDataLink::InputListing(std::vector<std::string>& sInputLines,
                                       std::int32_t lTimeout) {
    mState->AwaitReply(lTimeout, {.end = "\r\nOk\r\n"});
    return mState->TakeReply(sInputLines);
}

std::int32_t LinkState::TakeReply(std::vector<std::string>& lines) {
    const std::int32_t count = TakeReceivedLines(lines);
    if (count >= 2) GetPrinterError(lines[static_cast<std::size_t>(count - 2)]);
    return count;
}

std::int32_t clsDataLink::InputTextUntilQuiet(std::vector<std::string>& sInputLines,
                                              std::int32_t lTimeout, std::int32_t lQuiet) {
    // Such commands may have turned the echo off.
    mState->AwaitReply(lTimeout, {.unechoed = [](const LinkState& of) { return of.okOfAnother; }});
    mState->AwaitQuiet(lQuiet, std::numeric_limits<std::int32_t>::max());
    return mState->TakeReceivedLines(sInputLines);
}

void LinkState::AwaitReply(std::int32_t timeout, const ReplyRule& rule) {
    const std::uint64_t before = arrivals;
    std::uint64_t heard = arrivals;
    // The printer's time begins when what was sent can have reached it.
    const auto limitFromHere = [&] { return Sum(timeout, Serial().LineTimeLeft()); };
    // Who needs longer than the line does for the longest reply does not reply.
    Wait wait(host.loop,
              {.wholeMs = Sum(timeout, TravelMs(MostReplyBytes)), .silenceMs = limitFromHere()});
    const WaitEnd end = Await(wait, [&] {
        if (HoldsReply(rule)) return true;
        RequireReadable();
        if (std::exchange(heard, arrivals) != arrivals) wait.Heard(limitFromHere());
        return false;
    });
    if (end != WaitEnd::Met) {
        live.Printer(arrivals == before ? PrinterSilent : PrinterUnknown, LearntSilence);
        const bool another = !BeginsWithEcho() && okOfAnother;
        Fail(another ? ErrProtocol : ErrInputTimeout, InputSource);
    }
    live.Printer(PrinterAtPrompt, LearntReply);
    inputLine = InputLine::Empty;
    loadSince.reset();
    ForgetLoad();
}

bool LinkState::HoldsReply(const ReplyRule& rule) {
    if (!BeginsWithEcho()) return rule.unechoed != nullptr && rule.unechoed(*this);
    const std::size_t from = judged - std::min(judged, rule.end.size() - 1);
    judged = received.size();
    return received.find(rule.end, from) != std::string::npos;
}

bool LinkState::BeginsWithEcho() {
    if (echoFound || !echo.IsAwaited()) return true;
    for (;;) {
        const std::size_t end = received.find(CrLf, std::max(judged, sought));
        if (end == std::string::npos) {
            sought = received.size(); // line ends come whole
            return false;
        }
        const std::size_t start = std::exchange(judged, end + CrLf.size());
        const std::string_view line = std::string_view(received).substr(start, end - start);
        okOfAnother = okOfAnother || line.ends_with(PromptText);
        const auto begin = echo.FindIn(line);
        if (!begin) continue;
        received.erase(0, start + *begin);
        judged -= start + *begin;
        return echoFound = true;
    }
}

void LinkState::AwaitQuiet(std::int32_t quiet, std::int32_t longest) {
    Await({.wholeMs = longest, .silenceMs = quiet}, [this] {
        RequireReadable();
        return false;
    });
}

void LinkState::RequireReadable() {
    if (receiveOverflow) Fail(ErrProtocol, InputSource);
    if (!Serial().PortOpen()) Fail(ErrPortNotOpen, InputSource);
}

std::int32_t LinkState::TakeReceivedLines(std::vector<std::string>& lines) {
    const auto ends = static_cast<std::size_t>(std::ranges::count(received, '\n'));
    if (ends > MostReplyLines) Fail(ErrProtocol, InputSource);
    lines = SplitNonEmpty(received, CrLf);
    ClearReceived();
    return static_cast<std::int32_t>(lines.size());
}

void LinkState::GetPrinterError(std::string_view line) {
    const PrinterError error = ParsePrinterError(line);
    if (error.number == 0) return;
    ReleaseBeforeRaise();
    RaisePrinterError(error.number, "clsDatalink:GetPrinterError", error.description);
}

bool clsDataLink::WaitForEchoLine(std::string_view sEcho, std::int32_t lTimeout) {
    return mState->Serial().ReadLine(lTimeout).append(CrLf) == sEcho;
}

void clsDataLink::PurgePort() {
    if (mState->Serial().TransmitCount() > 0)
        mState->inputLine = LinkState::InputLine::MayHoldText; // a part of it may have left
    mState->Serial().FlushTransmit();
    mState->Serial().FlushReceive();
    mState->ClearReceived();
}

void LinkState::ClearReceived() {
    received.clear();
    echo.Clear();
    echoFound = false;
    judged = sought = 0;
    okOfAnother = false;
    receiveOverflow = false;
    endedInCr = false;
}

bool clsDataLink::ImmediateMode() const {
    return mState->immediateMode;
}

void clsDataLink::SetImmediateMode(bool bValue) {
    mState->immediateMode = bValue;
    if (bValue) return;
    mState->versionText.clear();
    mState->modelText.clear();
    mState->live.ForgetIdentity();
}

} // namespace qncomm

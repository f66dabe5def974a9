// The exchange: a command line goes out, its reply comes back, an error in it is raised.

#include "LinkState.h"
#include "PrinterError.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/StopWatch.h"
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
constexpr std::string_view EndOfReply = "Ok\r\n";
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

bool HoldsOk(std::string_view received) {
    return received.find(EndOfReply) != std::string_view::npos;
}

} // namespace

void clsDataLink::OutputText(std::string& sText, bool bWaitForEcho) {
    const bool endsALine = sText.find('\n') != std::string::npos;
    mState->Queue(sText);
    if (endsALine) mState->live.Told();
    const StopWatch watch(mState->host.loop);
    while (mState->Serial().TransmitCount() > 0)
        mState->AwaitOutput(watch, DrainTimeout);
    if (bWaitForEcho) mState->WaitForEcho();
}

void LinkState::Queue(std::string& text) {
    SentPrefix sent(text);
    StopWatch watch(host.loop);
    RequireWritable();
    while (!sent.Left().empty()) {
        const std::int32_t space = Serial().TransmitBufferSize() - Serial().TransmitCount();
        if (space <= 0) {
            AwaitOutput(watch, SendTimeout);
            continue;
        }
        const std::string_view piece = sent.Left().substr(0, static_cast<std::size_t>(space));
        Serial().Write(piece);
        NoteSent(piece);
        sent.Advance(piece.size());
        watch.Restart();
    }
}

void LinkState::OutputPart(std::string_view text) {
    std::string part(text);
    Queue(part);
    StopWatch watch(host.loop);
    for (std::int32_t waiting = Serial().TransmitCount(); waiting > 0;) {
        AwaitOutput(watch, SendTimeout);
        if (Serial().TransmitCount() < std::exchange(waiting, Serial().TransmitCount()))
            watch.Restart();
    }
}

void LinkState::AwaitOutput(const StopWatch& watch, std::int32_t limit) {
    const std::int32_t left = watch.UntilExceeds(limit);
    if (left == 0) Fail(ErrOutputTimeout, OutputSource);
    Yield(left);
    RequireWritable();
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
    const StopWatch watch(host.loop);
    while (!BeginsWithEcho() && Serial().PortOpen()) {
        const std::int32_t left = watch.UntilExceeds(EchoTimeout);
        if (left == 0) return;
        Yield(left);
    }
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
    mState->AwaitReply(lTimeout, {.unechoed = HoldsOk});
    mState->AwaitQuiet(lQuiet, std::numeric_limits<std::int32_t>::max());
    return mState->TakeReceivedLines(sInputLines);
}

void LinkState::AwaitReply(std::int32_t timeout, const ReplyRule& rule) {
    StopWatch watch(host.loop);
    const std::uint64_t before = arrivals;
    std::uint64_t heard = arrivals;
    // The printer's time begins when what was sent can have reached it.
    const auto limitFromHere = [&] {
        constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
        const std::int64_t limit = std::int64_t{timeout} + Serial().LineTimeLeft();
        return static_cast<std::int32_t>(std::min(limit, longest));
    };
    std::int32_t limit = limitFromHere();
    while (!HoldsReply(rule)) {
        RequireReadable();
        if (std::exchange(heard, arrivals) != arrivals) {
            watch.Restart();
            limit = limitFromHere();
        }
        const std::int32_t left = watch.UntilExceeds(limit);
        if (left == 0) {
            live.Printer(arrivals == before ? PrinterSilent : PrinterUnknown, LearntSilence);
            const bool another = !BeginsWithEcho() && HoldsOk(received);
            Fail(another ? ErrProtocol : ErrInputTimeout, InputSource);
        }
        Yield(left);
    }
    live.Printer(PrinterAtPrompt, LearntReply);
    inputLine = InputLine::Empty;
    loadSince.reset();
    ForgetLoad();
}

bool LinkState::HoldsReply(const ReplyRule& rule) {
    if (!BeginsWithEcho()) return rule.unechoed != nullptr && rule.unechoed(received);
    const std::size_t from = judged - std::min(judged, rule.end.size() - 1);
    judged = received.size();
    return received.find(rule.end, from) != std::string::npos;
}

bool LinkState::BeginsWithEcho() {
    if (echoFound || !echo.IsAwaited()) return true;
    for (;;) {
        const std::size_t end = received.find(CrLf, judged);
        if (end == std::string::npos) return false;
        const std::size_t start = std::exchange(judged, end + CrLf.size());
        const auto begin = echo.FindIn(std::string_view(received).substr(start, end - start));
        if (!begin) continue;
        received.erase(0, start + *begin);
        judged -= start + *begin;
        return echoFound = true;
    }
}

void LinkState::AwaitQuiet(std::int32_t quiet, std::int32_t longest) {
    const StopWatch whole(host.loop);
    StopWatch watch(host.loop);
    std::uint64_t heard = arrivals;
    while (const std::int32_t left =
               std::min(watch.UntilExceeds(quiet), whole.UntilExceeds(longest))) {
        Yield(left);
        RequireReadable();
        if (std::exchange(heard, arrivals) != arrivals) watch.Restart();
    }
}

void LinkState::RequireReadable() {
    if (receiveOverflow) Fail(ErrProtocol, InputSource);
    if (!Serial().PortOpen()) Fail(ErrPortNotOpen, InputSource);
}

std::int32_t LinkState::TakeReceivedLines(std::vector<std::string>& lines) {
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

bool clsDataLink::WaitForOk(std::int32_t lTimeout) {
    std::string text;
    StopWatch watch(mState->host.loop);
    for (;;) {
        const std::string chunk = mState->Serial().Read();
        if (!chunk.empty()) {
            const std::size_t searchFrom =
                text.size() - std::min(text.size(), EndOfReply.size() - 1);
            text += NormalizeLineEnds(chunk);
            if (text.find(EndOfReply, searchFrom) != std::string::npos) {
                mState->live.Printer(PrinterAtPrompt, LearntText);
                return true;
            }
            watch.Restart();
        }
        const std::int32_t left = watch.UntilExceeds(lTimeout);
        if (left == 0 || !mState->Serial().PortOpen())
            return false; // a lost line says nothing more
        mState->Serial().WaitForReceive(left);
    }
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
    judged = 0;
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

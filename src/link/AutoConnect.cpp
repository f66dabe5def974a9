// The search for the printer over all baud rates and frame formats.

#include "AutoConnectSearch.h"
#include "ExclusiveMark.h"
#include "LinkState.h"
#include "SearchAnswer.h"
#include "common/CountedScope.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t LineSilence = 100;
constexpr std::int32_t LongestSilenceWait = 3000;
constexpr std::int32_t ProbeDrain = 50;
constexpr std::int32_t ProbeSilence = 50;
constexpr std::int32_t SetupDrain = 100;
constexpr std::int32_t SetupSilence = 200;
constexpr std::int32_t LongestAnswer = 3000; ///< a device that never stops talking is no printer
constexpr std::int32_t LongestSetupMs =
    600'000;                          ///< of a listing that goes on, however slow the line
constexpr std::int32_t NoLonger = -1; ///< a limit that is over
constexpr std::size_t MostSearchBytes = std::size_t{1024} * 1024; ///< no printer says more at once

constexpr std::size_t SpoiledReply = 64; ///< bytes with which a printer refuses a spoiled line
constexpr std::string_view EndOfAnswer = "Ok\r\n";
constexpr std::string_view ProbedWord = "HELLO";
constexpr std::string_view Probe = "\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r";
constexpr std::array<std::int16_t, 3> Channels = {1, 2, 3};
constexpr std::int16_t ProgressStep = 3;
constexpr std::int16_t ProgressDone = 100;

/// A wait that is over when its time has come, and not a ms later.
constexpr std::int32_t JustBefore(std::int32_t ms) {
    return ms - 1;
}

std::size_t CountOf(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string_view::npos; ++count)
        at += what.size();
    return count;
}

bool HasThen(const std::string& text, std::string_view first, std::string_view then) {
    const std::size_t at = text.find(first);
    return at != std::string::npos && text.find(then, at + first.size()) != std::string::npos;
}

/// How long a reply that has come so far may take in all.
std::int32_t SetupLimit(SetupProgress progress) {
    switch (progress) {
    case SetupProgress::NotBegun:
        return LongestAnswer;
    case SetupProgress::Listing:
        return LongestSetupMs;
    default:
        return NoLonger;
    }
}

std::string ChannelLine(std::int16_t channel) {
    const std::string number = ToText(std::int32_t{channel});
    return "\rOPEN\"UART" + number + ":\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"" + number
           + "\":CLOSE68\r";
}

std::int16_t ChannelOf(const std::string& reply) {
    for (const std::int16_t channel : Channels)
        if (reply.find("=" + ToText(std::int32_t{channel})) != std::string::npos) return channel;
    return Channels.front();
}

} // namespace

bool clsDataLink::AutoConnect(std::int16_t iPort, bool bExclusive) {
    if (mState->hostCalls > 0 || (mState->IsExclusive() && !bExclusive)) return false;
    return AutoConnectSearch(*mState, iPort).Run();
}

bool clsDataLink::Listens() const {
    return mState->host.options.listen;
}

void clsDataLink::SetListens(bool bListens) {
    mState->host.options.listen = bListens;
}

const SearchReport& clsDataLink::LastSearch() const {
    return mState->lastSearch;
}

AutoConnectSearch::AutoConnectSearch(LinkState& state, std::int16_t port)
    : mState(state),
      mPort(port),
      mFormerTag(Serial().Tag()),
      mFormerPort(Serial().PortNumber()),
      mFormerSettings(Serial().PortSettings()),
      mFormerHandshaking(Serial().Handshaking()),
      mFormerMode(Serial().ReceiveMode()),
      mWasOpen(Serial().PortOpen()) {
    Serial().SetTag(ExclusiveMark);
}

AutoConnectSearch::~AutoConnectSearch() {
    try {
        End();
    } catch (...) { // NOLINT(bugprone-empty-catch): an event handler's error, and the search raises
                    // nothing
    }
}

bool AutoConnectSearch::Run() {
    bool found = false;
    try {
        found = Search();
        if (found) mState.AwaitPort(); // what follows finds it open
    } catch (const QNError&) {         // the outcome is the result; what failed shows in the status
        Quietly([this] { GiveUp(); });
    } catch (...) {
        Quietly([this] { PutBackSettings(); });
        throw;
    }
    Quietly([this] { mState.Yield(0); });
    return found;
}

bool AutoConnectSearch::Search() {
    if (mState.ReportStatus("AutoConnect initiate", 0)) return false;
    Serial().SetPortOpen(false);
    mSink.emplace(mState);
    mState.Yield(0);
    Serial().SetReceiveMode(ReceiveToLink);
    Serial().SetHandshaking(static_cast<std::int16_t>(mFormerHandshaking & Hardware_Flowcontrol));
    Serial().SetPortNumber(mPort);
    if (FindLine() && FindPrinter() && FindChannel() && ReadSetup()) return true;
    GiveUp();
    return false;
}

bool AutoConnectSearch::FindLine() {
    const bool open = TryOpen();
    if (mState.dsrDetectActive && !mState.link.IsDSRActive()) {
        Serial().SetPortOpen(false);
        return false;
    }
    bool free = true;
    if (open) { // a port that refuses these settings may take others
        if (mState.host.options.listen)
            free = IsLineFree();
        else
            WaitForSilence();
    }
    Serial().SetPortOpen(false);
    return free;
}

void AutoConnectSearch::WaitForSilence() {
    Wait wait(mState.host.loop,
              {.wholeMs = LongestSilenceWait, .silenceMs = JustBefore(LineSilence)});
    mState.Await(wait, [&] {
        if (Serial().ReceiveCount() > 0 || Serial().TransmitCount() > 0) {
            Flush();
            wait.Heard();
        }
        return false;
    });
}

bool AutoConnectSearch::FindPrinter() {
    Outcome outcome = TryAll();
    if (outcome == Outcome::Silent && mState.host.options.listen) outcome = TryParities();
    if (outcome == Outcome::Silent) {
        mReport = {.end = SearchEnd::Unanswered};
        mHeard.TellIn(mReport);
        mState.NobodyAnswered();
    }
    return outcome == Outcome::Answered;
}

AutoConnectSearch::Outcome AutoConnectSearch::TryAll() {
    const auto rates = mState.autoConnectBaudrates; // a status handler may load others meanwhile
    const auto formats = mState.frameFormats;
    for (const std::string& rate : rates) {
        for (const std::string& format : formats) {
            const Outcome outcome = TryCombination(rate, format);
            if (outcome != Outcome::Silent) return outcome;
        }
    }
    return Outcome::Silent;
}

AutoConnectSearch::Outcome AutoConnectSearch::TryCombination(const std::string& rate,
                                                             const std::string& format) {
    const std::string settings = rate + "," + format;
    mProgress = std::min<std::int16_t>(mProgress + ProgressStep, ProgressDone - 1);
    if (mState.ReportStatus("Searching... " + settings, mProgress)) return Outcome::Cancelled;
    if (!TryOpen(settings)) return Outcome::Silent;
    Flush();
    const std::string_view spoiler = mState.Spoiler();
    Serial().Write(std::string(spoiler).append(Probe));
    WaitForDrain(ProbeDrain);
    if (CollectProbe(rate, format, spoiler.empty() ? 0 : SpoiledReply)) {
        mRate = rate;
        mFormat = format;
        return Outcome::Answered;
    }
    Serial().SetPortOpen(false);
    return mReport.end == SearchEnd::Taken ? Outcome::Taken : Outcome::Silent;
}

bool AutoConnectSearch::FindChannel() {
    std::string reply;
    std::size_t asked = 0;
    for (const std::int16_t channel : Channels) {
        Serial().Write(ChannelLine(channel));
        ++asked;
        WaitForDrain(ProbeDrain);
        const Reply collected = CollectAnswer("=");
        reply += collected.text;
        if (collected.complete) break;
    }
    reply += CollectOwed(asked - std::min(asked, CountOf(reply, EndOfAnswer)));
    mState.stdio = ChannelOf(reply);
    return true;
}

bool AutoConnectSearch::ReadSetup() {
    if (mState.ReportStatus("Reading Printer Setup", mProgress)) return false;
    Flush();
    const std::string command =
        "SYSVAR(19)=2:SETUP WRITE \"UART" + ToText(std::int32_t{mState.link.Stdio()}) + ":\"";
    Serial().Write(command + "\r");
    WaitForDrain(SetupDrain);
    const std::string reply = CollectSetup(command);
    Serial().SetPortOpen(false);
    const auto setup = ParseSetupReply(reply, mState.link.Stdio());
    if (!setup) return false;
    Learn(*setup);
    return true;
}

void AutoConnectSearch::Learn(const SetupReply& setup) {
    {
        const CountedScope several(mState.settingSeveral);
        mState.link.SetBaudrate(setup.baudrate);
        mState.link.SetParity(setup.parity);
        mState.link.SetDatabits(setup.databits);
        mState.link.SetStopbits(setup.stopbits);
        mState.link.SetFlowcontrol(ToText(setup.flowcontrol));
    }
    mState.NotePlace();
    mState.live.Printer(PrinterAtPrompt, LearntSearch);
    if (mState.RemembersPrinters()) { // the port's printer, not the order for all ports
        mState.Remember(mPort, {});
    } else {
        MoveToFront(mState.autoConnectBaudrates, mRate);
        MoveToFront(mState.frameFormats, mFormat);
    }
    mState.ReportConnected();
    mState.link.SetImmediateMode(true);
    mState.inputLine = LinkState::InputLine::Empty;
    mState.outOfStep = false; // it has answered, and nothing else is on its way
    mReport = {.end = SearchEnd::Found};
}

void AutoConnectSearch::MoveToFront(Collection<std::string>& collection, const std::string& item) {
    if (!collection.Contains(item)) return;
    collection.Remove(item);
    if (collection.IsEmpty())
        collection.Add(item, item);
    else
        collection.AddBefore(1, item, item);
}

std::string AutoConnectSearch::Collect(std::int32_t silence, const Judge& limitOf) {
    std::string text;
    Wait wait(mState.host.loop,
              {.wholeMs = WaitBounds::Endless, .silenceMs = silence, .bytes = MostSearchBytes});
    mState.Await(wait, [&] {
        const std::string chunk = Serial().Read();
        mRaw += chunk;
        text += NormalizeLineEnds(Strip8thBit(chunk));
        wait.Came(chunk.size());
        wait.Within(limitOf(text));
        return false;
    });
    return text;
}

bool AutoConnectSearch::CollectProbe(const std::string& rate, const std::string& format,
                                     std::size_t before) {
    SearchAnswer answer(Probe, ProbedWord, Val(rate), before);
    const StopWatch watch(mState.host.loop);
    std::int32_t left = 0; // when the probe had left: a slow line is still at it, and until then a
                           // printer may have much to say to the probes of other rates
    const std::int32_t errorsBefore = Serial().LineErrorCount();
    mRaw.clear();
    const std::string text = Collect(ProbeSilence, [&](const std::string& soFar) {
        answer.Take(soFar);
        if (Serial().TransmitCount() > 0) left = std::min(watch.ElapsedMs(), LongestAnswer);
        return answer.Complete() ? NoLonger : left + answer.LimitMs();
    });
    if (answer.Complete()) return true;
    HeardLine heard{.bytes = std::exchange(mRaw, {}),
                    .lineErrors = Serial().LineErrorCount() - errorsBefore,
                    .silentMs = ProbeSilence,
                    .sent = std::string(Probe)};
    if (mState.host.options.listen && answer.Echoed()) return AwaitSlowAnswer(answer, text, heard);
    mHeard.Add(rate, format, heard);
    return false;
}

AutoConnectSearch::Reply AutoConnectSearch::CollectAnswer(std::string_view marker) {
    Reply reply;
    reply.text = Collect(ProbeSilence, [&](const std::string& text) {
        reply.complete = HasThen(text, marker, "Ok\r\n");
        return reply.complete ? NoLonger : LongestAnswer;
    });
    return reply;
}

std::string AutoConnectSearch::CollectOwed(std::size_t answers) {
    if (answers == 0) return {};
    return Collect(SetupSilence, [&](const std::string& text) {
        return CountOf(text, EndOfAnswer) < answers ? LongestAnswer : NoLonger;
    });
}

// All of it is judged anew where a line has ended or much has come: a slow line brings it byte by
// byte.
std::string AutoConnectSearch::CollectSetup(const std::string& command) {
    constexpr std::size_t much = 64;
    std::size_t judged = 0;
    std::int32_t limit = LongestAnswer;
    return Collect(SetupSilence, [&](const std::string& text) {
        const bool lineEnded = text.find('\n', judged) != std::string::npos;
        if (!lineEnded && text.size() < judged + much) return limit;
        judged = text.size();
        limit = SetupLimit(ProgressOfSetup(text, command, mState.link.Stdio()));
        return limit;
    });
}

void AutoConnectSearch::WaitForDrain(std::int32_t limit) {
    mState.Await({.wholeMs = JustBefore(limit)}, [this] { return Serial().TransmitCount() <= 0; });
}

void AutoConnectSearch::Flush() {
    Serial().FlushTransmit();
    Serial().FlushReceive();
}

bool AutoConnectSearch::TryOpen(const std::string& settings) {
    try {
        if (!settings.empty()) Serial().SetPortSettings(settings);
        mState.AwaitPort();
        Serial().SetPortOpen(true);
    } catch (const QNError& error) {
        if (mState.serial == nullptr) throw; // torn down
        if (mPort != mLoggedPort) mState.host.desktop.Log(error.Description());
        mLoggedPort = mPort;
        return false;
    }
    return Serial().PortOpen();
}

void AutoConnectSearch::GiveUp() {
    PutBackSettings();
    mState.link.SetImmediateMode(false);
    mState.ReportStatus(IsKeptFrom(mReport) ? Explain(mReport) : "No Printer found", ProgressDone);
}

void AutoConnectSearch::PutBackSettings() {
    Serial().SetPortOpen(false);
    Serial().SetPortNumber(mFormerPort);
    Serial().SetPortSettings(mFormerSettings);
    Serial().SetHandshaking(mFormerHandshaking);
}

void AutoConnectSearch::End() {
    mState.lastSearch = mReport;
    if (mState.serial == nullptr) return; // torn down from a handler
    mSink.reset();
    Serial().SetReceiveMode(mFormerMode);
    mState.ClearReceived();
    Quietly([this] {
        if (mWasOpen || mState.useCount > 0) mState.OpenSoon();
        mState.NoteLine();
        mState.NoteTalk();
    });
    mBusy.reset();
    Quietly([this] {
        if (mState.settings) mState.link.SaveCommSettings();
    });
    mState.EndExclusive(mFormerTag);
}

void AutoConnectSearch::Quietly(const std::function<void()>& step) {
    try {
        step();
    } catch (const QNError& error) {
        mState.host.desktop.Log(error.Description());
    }
}

} // namespace qncomm

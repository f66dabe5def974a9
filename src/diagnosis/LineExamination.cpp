#include "diagnosis/LineExamination.h"

#include "common/MemorySettings.h"
#include "common/QNError.h"
#include "common/StopWatch.h"
#include "common/Wait.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t ListenMs = 1000;
constexpr std::int32_t ListenShortlyMs = 300;
/// Bytes that were on their way while the settings changed are over by then.
constexpr std::int32_t SettleMs = 100;
constexpr std::int32_t LongestReachMs = 15'000; ///< a far side has limits of its own below this
constexpr std::int32_t AskMs = 100;             ///< between two questions whether to go on
/// A receiver that waits for a file asks for it again after eight seconds at the most, a printer
/// that starts takes a few, and one that waits for the rest of a load gives it up after ten.
constexpr std::int32_t ListenLongMs = 11'000;
/// How long a line that was being said at the end of the listening may go on.
constexpr std::int32_t LongestLineMs = 300;
/// The program that examines goes on meanwhile: its loop has a turn at least this often.
constexpr std::int32_t TurnMs = 20;
constexpr std::int32_t BufferBytes = 65'536;
/// How long bytes that do not end are listened to: enough to know them by.
constexpr std::size_t EnoughBytes = 4096;

/// Reads what is remembered, and keeps what a search learns for itself.
class Unsaved final : public RegSettings {
  public:
    explicit Unsaved(std::shared_ptr<const RegSettings> store) : mStore(std::move(store)) {}

    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override {
        return mOwn.ReadValue(sSection, sKey, mStore->ReadValue(sSection, sKey, sDefault));
    }
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override {
        mOwn.WriteValue(sSection, sKey, sValue);
    }

  private:
    std::shared_ptr<const RegSettings> mStore;
    MemorySettings mOwn;
};

/// Whether the line is left alone after this was heard: what is typed would go to what speaks.
bool IsTaken(LineTalk talk) {
    return talk != LineTalk::Silence && talk != LineTalk::Prompt && talk != LineTalk::Boot;
}

bool IsGone(IoStatus status) {
    return status == IoStatus::Missing || status == IoStatus::Lost || status == IoStatus::Failed;
}

void UseSettings(clsDataLink& link, const std::string& text) {
    const auto settings = ParseLineSettings(text);
    if (!settings) return;
    link.SetBaudrate(std::to_string(settings->baud));
    link.SetParity(std::string(1, settings->parity));
    link.SetDatabits(std::to_string(settings->dataBits));
    link.SetStopbits(std::to_string(settings->stopBits));
}

/// By which ZModem and Kermit receivers give up.
std::string_view CancelOf(LineTalk talk) {
    constexpr std::string_view zmodem = "\x18\x18\x18\x18\x18\x18\x18\x18\b\b\b\b\b\b\b\b";
    constexpr std::string_view kermit = "\x01# E*\r";
    if (talk == LineTalk::ZModemReceiver) return zmodem;
    return talk == LineTalk::KermitReceiver ? kermit : std::string_view();
}

} // namespace

LineExamination::LineExamination(ExaminedPort port)
    : mPort(std::move(port)),
      mRecord(mPort.trace),
      mSerial(mPort.reactor, mPort.bindings, &mRecord, mPort.factory),
      mLink(LinkHost{mPort.reactor, mPort.desktop, mDialogs, mPort.files}) {
    const auto settings = std::make_shared<Unsaved>(mPort.settings);
    settings->WriteValue("Settings", "Commport", std::to_string(mPort.number));
    mLink.SetSerialPort(&mSerial);
    mLink.SetRegSettings(settings);
    if (mPort.as.empty()) mPort.as = mLink.SettingsText();
}

LineExamination::~LineExamination() = default;

bool LineExamination::Tell(const std::string& doing) const {
    return mPort.progress && mPort.progress(doing);
}

LineFacts LineExamination::Run() {
    LineFacts facts;
    facts.settings = mPort.as;
    if (!mPort.address.empty()) facts.load = NotedLoad(*mPort.settings, mPort.address);
    if (Tell("Listening at " + mPort.as) || !Listen(mPort.as, ListenMs, facts) || Tell({}))
        return facts;
    if (facts.heard.talk == LineTalk::Noise) ListenAtOtherRates(facts);
    if (facts.load > 0 && facts.heard.talk == LineTalk::Silence) AwaitEndOfLoad(facts);
    if (facts.loss.empty() && !IsTaken(facts.heard.talk)) Ask(facts);
    AskOnceMoreAfterNoise(facts);
    // What asks for a file now and then is noise to a search that passes by at another rate.
    const bool unclear = facts.answer == Answer::Nothing || facts.answer == Answer::Noise;
    if (unclear && facts.loss.empty()) ListenOnceMore(facts);
    return facts;
}

// A printer that waits for the rest of a load would take a search for it.
void LineExamination::AwaitEndOfLoad(LineFacts& facts) {
    if (Tell("Waiting for a printer that may wait for the rest of a load")) return;
    if (!Listen(mPort.as, ListenLongMs, facts) || Tell({})) return;
    facts.loadGivenUp = facts.heard.talk != LineTalk::Silence;
}

// What came up meanwhile has greeted a host at other settings, or has asked for its file; or it has
// a parity that only a search which listens tries.
void LineExamination::AskOnceMoreAfterNoise(LineFacts& facts) {
    if (facts.answer != Answer::Noise || !facts.loss.empty()) return;
    mLink.SetListens(true);
    Ask(facts);
    mLink.SetListens(false);
}

void LineExamination::ListenOnceMore(LineFacts& facts) {
    LineFacts later = facts;
    if (Tell("Listening at " + mPort.as) || !Listen(mPort.as, ListenLongMs, later) || Tell({}))
        return;
    if (later.heard.talk == LineTalk::Silence) return;
    // A printer that comes up greets a host at whatever settings: noise, but only once.
    if (later.heard.talk == LineTalk::Noise && !Listen(mPort.as, ListenMs, later)) return;
    facts = later;
    facts.answer = Answer::Nothing;
    facts.answerText.clear();
    if (IsTaken(facts.heard.talk)) return;
    Ask(facts);
    AskOnceMoreAfterNoise(facts);
}

bool LineExamination::Open() {
    bool cancelled = false;
    if (!mSerial.ReachPort())
        Wait(mPort.reactor, {.wholeMs = LongestReachMs, .stepMs = AskMs})
            .UntilIn(mPort.reactor, [&] {
                cancelled = Tell({});
                return cancelled || mSerial.ReachPort();
            });
    if (!cancelled) mSerial.SetPortOpen(true);
    return !cancelled;
}

bool LineExamination::Listen(const std::string& settings, std::int32_t ms, LineFacts& facts) {
    try {
        mSerial.SetPortNumber(mPort.number);
        mSerial.SetPortSettings(settings);
        mSerial.SetHandshaking(0); // a full buffer would otherwise send an Xoff
        mSerial.SetBufferSizes(BufferBytes, 1);
        if (!Open()) return false;
    } catch (const QNError& error) {
        const auto& failure = mSerial.LastFailure();
        facts.opening =
            failure ? failure->reason : IoResult{IoStatus::Failed, 0, error.Description()};
        return false;
    }
    if (!mRecord.HasNoModemLines()) facts.dsr = mSerial.DSRState();
    if (settings != mPort.as) Settle();
    HeardLine heard;
    StopWatch silence(mPort.reactor);
    const auto enough = [&] {
        return !mSerial.PortOpen() || heard.bytes.size() >= EnoughBytes || Tell({});
    };
    const auto hear = [&](std::int32_t left) {
        mSerial.WaitForReceive(left);
        const std::int32_t quiet = silence.ElapsedMs(); // counted before the look: it may take long
        const std::string came = mSerial.Read();
        heard.bytes += came;
        heard.silentMs = came.empty() ? quiet : 0;
        if (!came.empty()) silence.Restart();
        mPort.reactor.Yield(0);
    };
    Wait(mPort.reactor, {.wholeMs = ms - 1, .stepMs = TurnMs}).Until(enough, hear);
    // A line that has just begun is no half line: what it is shows in the silence behind it.
    const auto said = [&] {
        return heard.bytes.empty() || heard.silentMs >= LineQuietMs || enough();
    };
    Wait(mPort.reactor, {.wholeMs = LongestLineMs, .stepMs = TurnMs}).Until(said, hear);
    heard.lineErrors = mRecord.Segments().back().damaged;
    if (!mSerial.PortOpen() && mSerial.LastLoss()) facts.loss = mSerial.LastLoss()->reason.text;
    mSerial.SetPortOpen(false);
    facts.errors = mRecord.Segments().back().errors;
    facts.errorsTold = facts.dsr && !heard.bytes.empty();
    facts.heard = Classify(heard);
    facts.heardText = Shown(heard.bytes);
    facts.heardAt = settings;
    return true;
}

void LineExamination::Settle() {
    Wait wait(mPort.reactor, {.wholeMs = SettleMs - 1, .bytes = BufferBytes});
    wait.Until([this] { return !mSerial.PortOpen(); },
               [&](std::int32_t left) {
                   mSerial.WaitForReceive(left);
                   wait.Came(mSerial.Read().size());
               });
}

void LineExamination::ListenAtOtherRates(LineFacts& facts) {
    const LineFacts first = facts;
    for (const std::string& rate : mLink.AutoConnectBaudrates()) {
        const std::string settings = rate + ",n,8,2";
        if (Tell("Listening at " + settings)) break;
        LineFacts there = first;
        if (!Listen(settings, ListenShortlyMs, there)) break;
        if (there.heard.fit != FormatFit::Fits && there.heard.fit != FormatFit::Parity) continue;
        facts = there;
        return;
    }
}

void LineExamination::Ask(LineFacts& facts) {
    const std::size_t before = mRecord.Segments().size();
    const Subscription progress = mLink.StatusEvent.Connect(
        [this](const std::string& text, std::int16_t&, bool& cancel) { cancel = Tell(text); });
    try {
        if (PortClaim claim = mLink.AcquirePort(); claim) Identify(facts);
    } catch (const QNError& error) {
        facts.failure = error.Description();
    }
    mLink.ReleasePort(true, true);
    if (const auto& loss = mSerial.LastLoss()) facts.loss = loss->reason.text;
    if (facts.answer == Answer::Printer) return;
    // A line that went between two openings of the search does not open again.
    if (const auto& failure = mSerial.LastFailure(); failure && IsGone(failure->reason.status))
        facts.loss = failure->reason.text;
    const std::vector<LineSegment> search(
        mRecord.Segments().begin() + static_cast<std::ptrdiff_t>(before), mRecord.Segments().end());
    facts.answer = Judge(search);
    facts.answerText = ShownAnswer(search);
}

void LineExamination::Identify(LineFacts& facts) {
    facts.model = mLink.ModelText();
    facts.firmware = mLink.VersionText();
    facts.found = mLink.SettingsText();
    facts.channel = mLink.Stdio();
    facts.answer = Answer::Printer;
    facts.errors = mRecord.Segments().back().errors;
    facts.errorsTold = facts.dsr.has_value();
}

std::string LineExamination::Fix(const LineFacts& facts) {
    try {
        UseSettings(mLink, facts.heardAt.empty() ? mPort.as : facts.heardAt);
        if (const std::string_view cancel = CancelOf(facts.heard.talk); !cancel.empty()) {
            if (!Open()) return "The port was not opened: cancelled.";
            mSerial.Write(cancel);
            mLink.Delay(ListenShortlyMs);
            mSerial.SetPortOpen(false);
        }
        static constexpr std::array said{"The port is in use; nothing was sent.",
                                         "What waited was ended; the printer is at its prompt.",
                                         "The program was stopped by Ctrl-C.",
                                         "The program was stopped by a break."};
        return said.at(static_cast<std::size_t>(mLink.StopProgram()));
    } catch (const QNError& error) {
        return "What runs could not be stopped: " + error.Description();
    }
}

} // namespace qncomm

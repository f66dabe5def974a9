#include "Session.h"

#include "GivenSettings.h"
#include "NoPrinter.h"
#include "PortRefusal.h"

#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "common/modErrorHandling.h"
#include "serial/PortAddress.h"

#include <iostream>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

namespace qnctl {
namespace {

using qncomm::StatusLine;

StatusLine::Style StyleFor(const GlobalOptions& options) {
    if (options.quiet || ::isatty(STDERR_FILENO) == 0) return StatusLine::Style::Off;
    return StatusLine::Style::Transient;
}

std::int32_t TerminalWidth() {
    constexpr std::int32_t usual = 80;
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

std::shared_ptr<qncomm::FileSettings> StoreFor(const GlobalOptions& options, const Output& output,
                                               const qncomm::Interrupt& interrupt) {
    return std::make_shared<qncomm::FileSettings>(
        options.settings.empty() ? qncomm::FileSettings::DefaultPath() : options.settings,
        [&output](std::string_view line) { output.Note(line); }, &interrupt);
}

} // namespace

Session::Session(const GlobalOptions& options, const Output& output)
    : mOptions(options),
      mOutput(output),
      mDesk(mLoop, std::cerr,
            {.input = STDIN_FILENO,
             .answer = options.Answer(),
             .style = StyleFor(options),
             .width = TerminalWidth(),
             .log = [this](std::string_view line) { Note(line); }}),
      mStore(StoreFor(options, output, mInterrupt)),
      mBook(mStore, qncomm::AllChannelKinds()) {
    for (const std::string& line : mBook.Warnings())
        mOutput.Note(line);
}

Session::~Session() {
    Unwire();
}

Outcome Session::ChooseThePort(const std::string& sNamed) {
    Unwire();
    mPort = mBook.Choose(sNamed);
    if (!mPort) return WhyNot(mPort, sNamed, mBook.Bindings());
    if (Outcome labels = PassLabelsOn(); !labels.Ok()) return labels;
    return MakeTheControl();
}

Outcome Session::ChooseNoPort() {
    Unwire();
    mPort = {};
    mPort.number = qncomm::PortBindings::Highest; // a lower one than 1 would be looked for
    mPort.lent = true;
    return MakeTheControl();
}

Outcome Session::MakeTheControl() {
    if (!mOptions.trace.empty() && !mTrace) {
        mTrace = std::make_unique<qncomm::JsonLinesTrace>(mOptions.trace);
        if (!mTrace->Result().Ok())
            return Refused(ExitStatus::Usage, "--trace " + mTrace->Result().text + ".");
    }
    Wire();
    return {};
}

Outcome Session::PassLabelsOn() {
    if (mOptions.labels.empty()) return {};
    if (!qncomm::IsVirtual(mPort.address))
        return Refused(ExitStatus::Usage, "--labels is for the virtual printer (sim:MODEL).");
    const std::string wrong = mBook.GiveOption(mPort, "labels", mOptions.labels);
    return wrong.empty() ? Outcome{} : Refused(ExitStatus::Usage, "--labels: " + wrong);
}

void Session::Wire() {
    qncomm::ControlAssembly::Options options;
    if (!mPort.address.empty()) options.bindings = mBook.Bindings();
    options.trace = mTrace.get();
    options.link = {.remembered = true,
                    .spoil = true,
                    .listen = mOptions.listen,
                    .addressOf = [this](std::int16_t port) { return mBook.AddressOf(port); }};
    mAssembly = std::make_unique<qncomm::ControlAssembly>(mLoop, mDesk.Services(), mDesk.View(),
                                                          std::move(options));
    mDesk.Host().Hold(&Control());
    mStatusEvent = Control().StatusEvent.Connect(
        [this](const std::string& message, std::int16_t progress, bool& cancel) {
            OnStatus(message, progress, cancel);
        });
    Control().UserControl_ReadProperties(qncomm::MemoryPropertyBag());
    Control().SetRegSettings(mBook.SettingsFor(mPort));
}

void Session::Unwire() {
    mClaim.reset();
    mTransfer.reset();
    mStatusEvent = {};
    mDesk.Host().Hold(nullptr);
    mAssembly.reset();
    mNote.clear();
}

void Session::Remember() {
    // The link's own names for what it saves; its settings object keeps them for this run alone.
    mBook.Remember(mPort, {{{}, "Baudrate", Link().Baudrate()},
                           {{}, "Parity", Link().Parity()},
                           {{}, "Databits", Link().Databits()},
                           {{}, "Stopbits", Link().Stopbits()},
                           {{}, "FlowControl", Link().Flowcontrol()}});
}

std::string Session::PortName() const {
    if (mPort.lent) return mPort.address;
    return qncomm::NameOfPort(mPort.number) + " (" + mPort.address + ")";
}

Outcome Session::Connect() {
    // Opened here first: a port that cannot be opened says why, and nothing is searched on it.
    Assembly().OpenPort();
    if (mOptions.interrupt) EndProgram();
    bool claimed = Claim();
    if (!claimed && mOptions.interrupt && UseHeardSettings()) {
        EndProgram();
        claimed = Claim();
    }
    Status().Clear();
    return claimed ? Outcome{} : NotFound();
}

bool Session::Claim() {
    mClaim.emplace(Link().AcquirePort());
    return static_cast<bool>(*mClaim);
}

void Session::EndProgram() {
    try {
        Link().StopProgram();
    } catch (const qncomm::QNError& error) {
        if (error.Number() != qncomm::ErrInputTimeout) throw; // the search says what is there
    }
}

bool Session::UseHeardSettings() {
    const qncomm::SearchReport& report = Link().LastSearch();
    return report.end == qncomm::SearchEnd::LineTalks
           && UseGivenSettings(Link(), report.settings).Ok();
}

void Session::Disconnect() {
    if (mClaim) mClaim->Release();
    mClaim.reset();
}

std::optional<Outcome> Session::PortFailure() const {
    if (!mAssembly) return std::nullopt;
    // A device that comes back, or goes slowly, is open again before what lost it has ended.
    const auto& now = Serial().LastFailure();
    const auto& failure = now ? now : Serial().LastLoss();
    if (!failure) return std::nullopt;
    return Outcome{ExitStatus::PortUnavailable, failure->number, "PDQComm", failure->description};
}

Outcome Session::Failed(const qncomm::QNError& error) const {
    return PortFailure().value_or(OutcomeOf(error));
}

Outcome Session::NotFound() {
    if (Interrupted()) return Cancelled();
    if (auto lost = PortFailure()) return *lost;
    Outcome none = WhyNoPrinter(Link().LastSearch(), {PortName(), mPort.address});
    if (!mNote.empty()) none.message += " " + mNote;
    return none;
}

bool Session::Ask(const std::string& title, const std::string& question) {
    const qncomm::MsgBox box{question, qncomm::MsgBoxButtons::YesNo, qncomm::MsgBoxIcon::Question,
                             title};
    return mDesk.Boxes().ShowMsgBox(box) == qncomm::MsgBoxResult::Yes;
}

qncomm::TransferProgress& Session::FollowTransfer(qncomm::TransferProgress::Report report) {
    return mTransfer.emplace(
        mLoop, Status(),
        [this] {
            using Moved = qncomm::TransferProgress::Moved;
            if (const auto size = static_cast<std::int64_t>(Link().LoadSize()); size > 0)
                return Moved{static_cast<std::int64_t>(Link().LoadBytes()), size};
            return Moved{Serial().TransferBytes(), Serial().TransferSize()};
        },
        std::move(report));
}

std::int32_t Session::DeafMs() {
    return mAssembly ? Link().DeafMs() : 0;
}

void Session::ShowEveryStatus() {
    if (!mOptions.quiet && ::isatty(STDERR_FILENO) == 0)
        Status().SetStyle(StatusLine::Style::Lines);
}

void Session::OnStatus(const std::string& message, std::int16_t progress, bool& cancel) {
    const bool interrupted = mInterrupt.Raised();
    // What has no percentage then waits for the printer, and need not.
    const std::string shown =
        interrupted && progress < 0 ? message + ". Ctrl-C again: no longer" : message;
    if (mTransfer)
        mTransfer->Show(shown, progress);
    else
        Status().Show(shown, progress);
    if (interrupted || mOutput.Error() != 0) cancel = true;
}

Outcome Session::RecordingOutcome() {
    if (mTrace && !mTrace->Result().Ok())
        return Refused(ExitStatus::Error, "--trace " + mTrace->Result().text + ".");
    // It was told when it ended.
    return mDesk.Host().CaptureLost() ? Refused(ExitStatus::Error, {}) : Outcome{};
}

bool Session::TakePortRefusal() {
    // Other lines of the log are for the trace alone.
    return std::exchange(mNote, {}) == "port not available";
}

void Session::Note(std::string_view line) {
    mNote = line;
    if (mTrace) mTrace->Record(mLoop.NowMs(), qncomm::TraceKind::Event, line);
}

} // namespace qnctl

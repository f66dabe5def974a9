#include "Session.h"

#include "assembly/NamedPortSettings.h"
#include "common/QNError.h"

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

std::shared_ptr<qncomm::FileSettings> StoreFor(const GlobalOptions& options) {
    return std::make_shared<qncomm::FileSettings>(
        options.settings.empty() ? qncomm::FileSettings::DefaultPath() : options.settings,
        [](std::string_view line) { std::cerr << "qnctl: " << line << std::endl; });
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
      mStore(StoreFor(options)) {}

Session::~Session() {
    Unwire();
}

void Session::Prepare() {
    std::string warnings;
    mBindings = BindPorts(*mStore, warnings);
    if (!warnings.empty()) std::cerr << "qnctl: " << warnings << std::flush;
}

Outcome Session::ChooseThePort(const std::string& sNamed) {
    Unwire();
    mPort = ChoosePort(sNamed, *mStore, mBindings);
    if (!mPort.outcome.Ok()) return mPort.outcome;
    if (Outcome labels = PassLabelsOn(); !labels.Ok()) return labels;
    return MakeTheControl();
}

Outcome Session::ChooseNoPort() {
    Unwire();
    mBindings = {};
    mPort = {};
    mPort.number = qncomm::PortBindings::Highest; // a lower one than 1 would be looked for
    return MakeTheControl();
}

Outcome Session::MakeTheControl() {
    if (!mOptions.trace.empty() && !mTrace) {
        mTrace = std::make_unique<qncomm::JsonLinesTrace>(mOptions.trace);
        if (!mTrace->Result().Ok())
            return Refused(ExitStatus::Usage,
                           "--trace " + mOptions.trace + ": " + mTrace->Result().text + ".");
    }
    Wire();
    return {};
}

Outcome Session::PassLabelsOn() {
    if (mOptions.labels.empty()) return {};
    if (mPort.address.rfind("sim:", 0) != 0)
        return Refused(ExitStatus::Usage, "--labels is for the virtual printer (sim:MODEL).");
    const char* joint = mPort.address.find('?') == std::string::npos ? "?" : "&";
    const std::string wrong =
        mBindings.Give(mPort.number, mPort.address + joint + "labels=" + mOptions.labels);
    return wrong.empty() ? Outcome{} : Refused(ExitStatus::Usage, "--labels: " + wrong);
}

void Session::Wire() {
    qncomm::ControlAssembly::Options options;
    options.bindings = mBindings;
    options.trace = mTrace.get();
    mAssembly = std::make_unique<qncomm::ControlAssembly>(mLoop, mDesk.Services(), mDesk.View(),
                                                          std::move(options));
    mDesk.Host().Hold(&Control());
    mStatusEvent = Control().StatusEvent.Connect(
        [this](const std::string& message, std::int16_t progress, bool& cancel) {
            OnStatus(message, progress, cancel);
        });
    Control().UserControl_ReadProperties(qncomm::MemoryPropertyBag());
    if (mPort.stored)
        Control().SetRegSettings(mStore);
    else
        Control().SetRegSettings(
            std::make_shared<qncomm::NamedPortSettings>(mStore, mPort.number, mPort.address));
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
    std::int16_t number = mPort.number;
    if (PortIsLent()) {
        number = 1; // take the lowest free one
        while (number < qncomm::PortBindings::Highest && mBindings.Find(number) != nullptr)
            ++number;
    }
    const std::string text = std::to_string(number);
    // The link's own names for what it saves; its settings object keeps them for this run alone.
    mStore->WriteValues({{"Ports", "COM" + text, mPort.address},
                         {"Settings", "Commport", text},
                         {"Settings", "Baudrate", Link().Baudrate()},
                         {"Settings", "Parity", Link().Parity()},
                         {"Settings", "Databits", Link().Databits()},
                         {"Settings", "Stopbits", Link().Stopbits()},
                         {"Settings", "FlowControl", Link().Flowcontrol()}});
}

bool Session::PortIsLent() const {
    const qncomm::PortBinding* binding = mBindings.Find(mPort.number);
    return binding == nullptr || binding->source == qncomm::BindingSource::Given;
}

std::string Session::PortName() const {
    if (PortIsLent()) return mPort.address;
    return "COM" + std::to_string(mPort.number) + " (" + mPort.address + ")";
}

Outcome Session::Connect() {
    // Opened here first: a port that cannot be opened says why, and nothing is searched on it.
    Serial().SetPortOpen(true);
    mClaim.emplace(Link().AcquirePort());
    Status().Clear();
    return *mClaim ? Outcome{} : NotFound();
}

void Session::Disconnect() {
    if (mClaim) mClaim->Release();
    mClaim.reset();
}

Outcome Session::NotFound() {
    if (Interrupted()) return Cancelled();
    if (const auto& failure = Serial().LastFailure())
        return {ExitStatus::PortUnavailable, failure->number, "PDQComm", failure->description};
    std::string message = "No printer answered on " + PortName() + ".";
    if (!mNote.empty()) message += " " + mNote;
    return Refused(ExitStatus::NoPrinter, message);
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
            return qncomm::TransferProgress::Moved{Serial().TransferBytes(),
                                                   Serial().TransferSize()};
        },
        std::move(report));
}

void Session::ShowEveryStatus() {
    if (!mOptions.quiet && ::isatty(STDERR_FILENO) == 0)
        Status().SetStyle(StatusLine::Style::Lines);
}

void Session::OnStatus(const std::string& message, std::int16_t progress, bool& cancel) {
    if (mTransfer)
        mTransfer->Show(message, progress);
    else
        Status().Show(message, progress);
    if (mInterrupt.Raised()) cancel = true;
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

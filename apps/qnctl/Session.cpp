#include "Session.h"

#include "SessionSettings.h"

#include "common/QNError.h"

#include <iostream>

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
      mInput(mLoop, STDIN_FILENO),
      mStatus(std::cerr, StyleFor(options), TerminalWidth()),
      mDesktop(std::cerr, mStatus, mInput, options.Answer(),
               [this](std::string_view line) { Note(line); }),
      mDialogs(std::cerr, mStatus, mLoop),
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
    mSerial = std::make_unique<qncomm::PDQComm>(mLoop, mBindings, mTrace.get());
    mLink = std::make_unique<qncomm::clsDataLink>(qncomm::LinkHost{mLoop, mDesktop, mDialogs});
    mPrinter = std::make_unique<qncomm::clsQuorin>(*mLink, mDesktop);
    mLinkStatus =
        mLink->StatusEvent.Connect([this](const std::string& message, std::int16_t progress,
                                          bool& cancel) { OnStatus(message, progress, cancel); });
    mPrinterStatus = mPrinter->StatusEvent.Connect(
        [this](const std::string& message, std::int16_t progress, bool& cancel) {
            OnStatus(message, progress, cancel);
        });
    mLink->SetSerialPort(mSerial.get());
    if (mPort.stored)
        mLink->SetRegSettings(mStore);
    else
        mLink->SetRegSettings(
            std::make_shared<SessionSettings>(mStore, mPort.number, mPort.address));
}

void Session::Unwire() {
    mClaim.reset();
    mPrinterStatus = {};
    mLinkStatus = {};
    if (mPrinter) mPrinter->TearDown();
    if (mLink) mLink->TearDown();
    mPrinter.reset();
    mLink.reset();
    mSerial.reset();
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
                         {"Settings", "Baudrate", mLink->Baudrate()},
                         {"Settings", "Parity", mLink->Parity()},
                         {"Settings", "Databits", mLink->Databits()},
                         {"Settings", "Stopbits", mLink->Stopbits()},
                         {"Settings", "FlowControl", mLink->Flowcontrol()}});
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
    mSerial->SetPortOpen(true);
    mClaim.emplace(mLink->AcquirePort());
    mStatus.Clear();
    return *mClaim ? Outcome{} : NotFound();
}

void Session::Disconnect() {
    if (mClaim) mClaim->Release();
    mClaim.reset();
}

Outcome Session::NotFound() {
    if (Interrupted()) return Cancelled();
    if (const auto& failure = mSerial->LastFailure())
        return {ExitStatus::PortUnavailable, failure->number, "PDQComm", failure->description};
    std::string message = "No printer answered on " + PortName() + ".";
    if (!mNote.empty()) message += " " + mNote;
    return Refused(ExitStatus::NoPrinter, message);
}

bool Session::Ask(const std::string& title, const std::string& question) {
    const qncomm::MsgBox box{question, qncomm::MsgBoxButtons::YesNo, qncomm::MsgBoxIcon::Question,
                             title};
    return mDesktop.ShowMsgBox(box) == qncomm::MsgBoxResult::Yes;
}

void Session::ShowEveryStatus() {
    if (!mOptions.quiet && ::isatty(STDERR_FILENO) == 0) mStatus.SetStyle(StatusLine::Style::Lines);
}

void Session::OnStatus(const std::string& message, std::int16_t progress, bool& cancel) {
    mStatus.Show(message, progress);
    if (mInterrupt.Raised()) cancel = true;
}

void Session::Note(std::string_view line) {
    mNote = line;
    if (mTrace) mTrace->Record(mLoop.NowMs(), qncomm::TraceKind::Event, line);
}

} // namespace qnctl

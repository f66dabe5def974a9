// Files over the line: Kermit transfers that the link starts on both sides, binary ones that find
// the printer waiting.

#include "FileTransfer.h"

#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "common/modErrorHandling.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t FailureDelay = 1000;
constexpr std::int32_t OkTimeout = 2000;
constexpr std::int32_t OkMost = 15'000;      ///< a printer that talks on has no prompt to give
constexpr std::int32_t RefusalTimeout = 400; ///< a printer looks for the device and the file first
constexpr std::int32_t WakeInterval = 1000;  ///< states come as events; this only bounds a sleep
constexpr std::int32_t AbortLimit = 10000;   ///< a control that does not end is left to its fate
constexpr std::int32_t SmallFile = 10240;
constexpr std::int16_t AllDone = 100;
constexpr std::int16_t NoProgress = -1;

constexpr std::string_view UploadVerb = "Uploading ";
constexpr std::string_view DownloadVerb = "Downloading ";
// The binary operations report with the same texts.
constexpr std::string_view UploadFailedSource = "QNComm, clsDataLink:KermitUpload";
constexpr std::string_view DownloadFailedSource = "QNComm, clsDataLink:KermitDownload";

/// Received bytes stay on the port while it lives.
class NoReceiveEvents {
  public:
    explicit NoReceiveEvents(LinkState& state) : mState(state) {
        mState.Serial().SetReceiveThreshold(0);
    }
    ~NoReceiveEvents() {
        if (mState.serial != nullptr) mState.serial->SetReceiveThreshold(1);
    }
    NoReceiveEvents(const NoReceiveEvents&) = delete;
    NoReceiveEvents& operator=(const NoReceiveEvents&) = delete;

  private:
    LinkState& mState;
};

std::string UploadCommand(const std::string& destination) {
    std::string receive = "TRANSFER K " + Quoted("R") + "\r\n";
    const std::size_t colon = destination.find(':');
    if (colon == std::string::npos) return receive;
    return "CHDIR" + Quoted(destination.substr(0, colon + 1)) + ":" + receive;
}

std::string DownloadCommand(const std::string& source) {
    return "TRANSFER K " + Quoted("S") + "," + Quoted(source) + "\r\n";
}

/// What an uploaded file is called on the printer.
std::string TargetName(const std::string& source, const std::string& destination) {
    const std::string name = destination.substr(destination.find(':') + 1);
    return name.empty() ? PrinterNameOf(source) : name;
}

/// Of a size that is not known, or of no bytes, the end alone is reported.
std::int16_t Percent(std::int32_t bytes, std::int32_t size) {
    if (size <= 0) return 0;
    const double percent = 100.0 * bytes / size;
    return ToInt16(std::min<double>(percent, std::numeric_limits<std::int16_t>::max()));
}

void RaiseUnless(bool done, std::int32_t number, std::string_view source) {
    if (!done) RaiseError(number, source);
}

} // namespace

FileTransfer::FileTransfer(LinkState& state, Job job)
    : mState(state), mJob(std::move(job)), mMessage(OwnMessage()) {}

std::string FileTransfer::OwnMessage() const {
    return std::string(mJob.verb) + mJob.name;
}

FileTransfer::~FileTransfer() {
    if (mState.serial == nullptr) return;
    // An error or the end of the program must not leave a transfer running on a port that goes on,
    // nor the port open for a terminal that was hidden meanwhile.
    try {
        if (Serial().TransferState() >= TransferStarted)
            Serial().SetTransferState(TransferAborting);
        mState.Settle();
    } catch (const std::exception& error) { // another one may be on its way
        mState.host.desktop.Log(error.what());
    }
}

bool FileTransfer::Run(const std::function<void()>& start, std::int32_t holdMs) {
    const auto refused = [refusal = mRefusal](std::string_view heard) {
        return IsRefusal(heard, *refusal);
    };
    Serial().SetTransferLook({.refused = refused, .holdMs = holdMs});
    mState.transferTarget = mJob.target;
    mState.transferState = TransferPending;
    mState.live.Printer(mJob.verb == UploadVerb ? PrinterReceiving : PrinterRunning,
                        LearntTransfer);
    start();
    // The protocol has deadlines of its own, however large the file is.
    Step step = Step::GoOn;
    mState.Await({.wholeMs = WaitBounds::Endless, .stepMs = WakeInterval}, [&] {
        step = Follow(mState.transferState);
        return step != Step::GoOn;
    });
    if (step == Step::Failed && !mRefusal->said) mState.link.Delay(FailureDelay);
    return step == Step::Over;
}

/// A printer that says an error, or is back at its prompt, will not begin. Lines count when they
/// are whole.
bool FileTransfer::IsRefusal(std::string_view heard, Refusal& refusal) {
    const std::string text = NormalizeLineEnds(heard);
    const std::size_t end = text.rfind(CrLf);
    if (end == std::string::npos) return false;
    for (const std::string& line : SplitNonEmpty(text.substr(0, end), CrLf)) {
        if (line.starts_with("Error")) refusal.error = ParsePrinterError(line);
        refusal.said = refusal.error.number != 0 || line == "Ok";
        if (refusal.said) return true;
    }
    return false;
}

void FileTransfer::RaiseRefusal() const {
    const PrinterError& error = mRefusal->error;
    if (error.number == 0) return;
    RaisePrinterError(error.number, "clsDatalink:GetPrinterError", error.description);
}

FileTransfer::Step FileTransfer::Follow(std::int16_t state) {
    switch (state) {
    case TransferIdle:
        return mSeen ? Step::Over : Step::GoOn;
    case TransferFailed:
    case TransferAborting:
        return Step::Failed;
    case TransferAbortRequest:
        Serial().SetTransferState(TransferAborting);
        return Step::GoOn;
    case TransferStarted:
    case TransferClosing:
        break;
    case TransferAnnounced:
        Announced();
        break;
    case TransferMoving:
        ReportProgress();
        break;
    default:
        return Step::GoOn;
    }
    mSeen = true;
    return Step::GoOn;
}

void FileTransfer::Announced() {
    if (mJob.nameComesFromControl) {
        const bool own = mMessage == OwnMessage();
        mJob.name = Utf8FromPrinter(Serial().TransferFileName());
        if (own) mMessage = OwnMessage();
    }
    ReportProgress();
}

// Some protocols tell the size behind the announcement, or never.
void FileTransfer::LearnSize() {
    if (mJob.size == 0) mJob.size = Serial().TransferSize();
    mStepPercent = mJob.size < SmallFile ? 1 : 2;
}

void FileTransfer::ReportProgress() {
    LearnSize();
    const std::int16_t percent = Percent(Serial().TransferBytes(), mJob.size);
    if (percent % mStepPercent != 0 || percent == mReported) return;
    mReported = percent;
    Report(percent);
}

void FileTransfer::Report(std::int16_t percent) {
    if (mState.ReportStatus(mMessage, percent)) Serial().SetTransferState(TransferAborting);
}

void FileTransfer::Abort() {
    try {
        mState.Await({.wholeMs = AbortLimit, .stepMs = WakeInterval}, [this] {
            if (Serial().TransferState() < TransferStarted) return true;
            Serial().SetTransferState(TransferAborting);
            return false;
        });
    } catch (const QNError& error) {
        mState.host.desktop.Log(error.Description());
    }
}

void LinkState::OnTransfer() {
    transferState = Serial().TransferState();
    if (transferState == TransferAnnounced) Serial().SetTransferFileName(transferTarget);
}

bool LinkState::RunKermit(PortClaim claim, FileTransfer& transfer, const std::string& command,
                          const std::function<void()>& start) {
    const NoReceiveEvents polled(*this);
    Serial().FlushTransmit();
    Serial().FlushReceive();
    Serial().SetTransferKind(TransferKermit);
    if (!command.empty()) link.OutputText(std::string(command), true);
    const bool done = transfer.Run(start, command.empty() ? 0 : RefusalTimeout);
    transfer.Report(AllDone);
    ReadToPrompt(OkTimeout, OkMost);
    transfer.Report(NoProgress);
    transfer.Abort();
    claim.Release();
    if (!done) transfer.RaiseRefusal();
    return done;
}

void clsDataLink::KermitUpload(const std::string& sSource, const std::string& sDestination,
                               bool bManual) {
    if (!bManual && !mState->host.files.Exists(sSource))
        RaiseError(ErrUploadName, "clsDataLink,Upload");
    PortClaim claim = bManual ? mState->ClaimLine(false) : AcquirePort();
    if (!claim) return;
    FileTransfer transfer(*mState, {.verb = UploadVerb,
                                    .name = FileNameOf(sSource),
                                    .target = TargetName(sSource, sDestination),
                                    .nameComesFromControl = true});
    const std::string command = bManual ? std::string() : UploadCommand(sDestination);
    const bool done = mState->RunKermit(std::move(claim), transfer, command,
                                        [&] { mState->Serial().SendFile(sSource); });
    RaiseUnless(done, ErrUploadTimeout, UploadFailedSource);
}

void clsDataLink::KermitDownload(const std::string& sSource, const std::string& sDestination,
                                 std::int32_t lFileSize) {
    PortClaim claim = AcquirePort();
    if (!claim) return;
    FileTransfer transfer(*mState, {.verb = DownloadVerb,
                                    .name = Utf8FromPrinter(sSource),
                                    .target = sDestination,
                                    .size = lFileSize});
    const bool done = mState->RunKermit(std::move(claim), transfer, DownloadCommand(sSource),
                                        [&] { mState->Serial().ReceiveFile(sDestination); });
    RaiseUnless(done, ErrDownloadTimeout, DownloadFailedSource);
}

bool LinkState::RunBinary(FileTransfer& transfer, std::int16_t protocol,
                          const std::function<void()>& start) {
    Serial().FlushTransmit();
    Serial().FlushReceive();
    Serial().SetBinaryProtocol(protocol);
    Serial().SetTransferKind(TransferBinary);
    const bool done = transfer.Run(start);
    transfer.Report(AllDone);
    transfer.Report(NoProgress);
    transfer.Abort();
    Settle(); // the terminal may have been shown or hidden meanwhile
    if (transfer.IsRefused()) inputLine = InputLine::MayHoldText; // packets were typed at a prompt
    return done;
}

void clsDataLink::BinaryUpload(const std::string& sSource, std::int16_t iProtocol) {
    constexpr std::string_view source = "clsDataLink, BinaryUpload";
    if (!mState->host.files.Exists(sSource)) RaiseError(ErrUploadName, source);
    if (!mState->Serial().PortOpen()) RaiseError(ErrPortNotOpen, source);
    if (mState->hostCalls > 0) return;
    FileTransfer transfer(*mState, {.verb = UploadVerb,
                                    .name = FileNameOf(sSource),
                                    .target = PrinterNameOf(sSource),
                                    .nameComesFromControl = true});
    const bool done =
        mState->RunBinary(transfer, iProtocol, [&] { mState->Serial().SendFile(sSource); });
    RaiseUnless(done, ErrUploadTimeout, UploadFailedSource);
}

void clsDataLink::BinaryDownload(const std::string& sDestination, std::int16_t iProtocol) {
    if (mState->hostCalls > 0) return;
    bool done = false;
    {
        FileTransfer transfer(
            *mState,
            {.verb = DownloadVerb, .name = FileNameOf(sDestination), .target = sDestination});
        const NoReceiveEvents polled(*mState);
        done = mState->RunBinary(transfer, iProtocol,
                                 [&] { mState->Serial().ReceiveFile(sDestination); });
    }
    RaiseUnless(done, ErrDownloadTimeout, DownloadFailedSource);
}

} // namespace qncomm

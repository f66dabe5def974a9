// Files over the port: while a transfer is in progress it owns what comes and what goes.

#include "ReceivePath.h"
#include "TransferInProgress.h"
#include "serial/PDQComm.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

/// How long the last bytes may take to leave before the end is reported all the same.
constexpr std::int64_t LastBytesUs = 2'000'000;

std::int32_t Counted(std::uint64_t bytes) {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(bytes, most));
}

std::string NameOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

} // namespace

void PDQComm::SendFile(const std::string& sPath) {
    StartTransfer(true, sPath);
}

void PDQComm::ReceiveFile(const std::string& sPath) {
    StartTransfer(false, sPath);
}

void PDQComm::StartTransfer(bool sends, const std::string& path) {
    const bool binary = mTransferKind == TransferBinary;
    TransferOrder order{.sends = sends,
                        .byZModem = binary && mBinaryProtocol == BinaryZModem,
                        .path = path,
                        .name = NameOf(path),
                        .sevenBits = mSettings.dataBits == 7,
                        .reliable = mOpen != nullptr && mOpen->IsReliable(),
                        .preferences = mPreferences,
                        .look = std::exchange(mTransferLook, {})};
    mTransferStarted = false;
    mTransferReason.clear();
    mTransferLimitUs = 0;
    mTransfer = std::make_unique<TransferInProgress>(
        std::move(order), [this](std::int16_t state) { OnTransferState(state); });
    if (mOpen == nullptr) mTransfer->Break("the port is not open");
    if (binary && mBinaryProtocol != BinaryZModem && mBinaryProtocol != BinaryKermit)
        mTransfer->Break("there is no protocol " + std::to_string(mBinaryProtocol));
    mTransferDue->SetDue(mReactor.NowUs()); // events come from Yield alone
}

void PDQComm::RunTransfer() {
    if (!mTransfer) return;
    const std::int64_t now = mReactor.NowUs();
    if (!std::exchange(mTransferStarted, true)) {
        mTransfer->Start(now);
        mTransfer->Receive(mReceive->TakeAll(), now); // what came behind the command that began it
    } else if (const auto due = mTransfer->NextDue(); due && *due <= now) {
        mTransfer->Tick(now);
    }
    SendForTransfer();
    if (mTransfer && mTransfer->IsOver() && LastBytesGone())
        EndTransfer();
    else
        ScheduleTransfer();
}

bool PDQComm::LastBytesGone() {
    if (mOpen == nullptr || mOpen->OutputPending() == 0) return true;
    const std::int64_t now = mReactor.NowUs();
    if (mTransferLimitUs == 0) mTransferLimitUs = now + LastBytesUs;
    return now >= mTransferLimitUs;
}

void PDQComm::SendForTransfer() {
    mTransferWaitsForLine = false;
    while (mTransfer && mOpen != nullptr) {
        const std::string_view output = mTransfer->Output(mReactor.NowUs());
        if (output.empty()) break;
        const IoCount sent = mOpen->Write(output);
        if (mTrace != nullptr && sent.count > 0)
            Trace(TraceKind::Sent, output.substr(0, sent.count));
        const bool all = sent.count == output.size();
        mTransfer->Sent(sent.count, mReactor.NowUs());
        if (!sent.result.Ok()) {
            Lose(sent.result);
            return;
        }
        mTransferWaitsForLine = !all;
        if (!all) break;
    }
    WantEvents();
}

void PDQComm::ScheduleTransfer() {
    if (!mTransfer) return;
    constexpr std::int64_t drainUs = 5000;
    if (mTransfer->IsOver())
        mTransferDue->SetDue(mReactor.NowUs() + drainUs);
    else if (const auto due = mTransfer->NextDue())
        mTransferDue->SetDue(*due);
    else
        mTransferDue->Clear();
}

void PDQComm::EndTransfer() {
    mTransferWaitsForLine = false;
    mTransferDue->Clear();
    const std::string unread = mTransfer->Finish();
    mTransferReason = mTransfer->Reason();
    mTransferName = mTransfer->Name();
    mTransferStarted = false;
    mTransfer.reset();
    if (!mTransferReason.empty()) Trace(TraceKind::Event, "transfer failed: " + mTransferReason);
    const std::span<char> space = mReceive->Space();
    mReceive->Commit(unread.copy(space.data(), space.size()));
    WantEvents();
    ScheduleEvents();
}

void PDQComm::OnTransferState(std::int16_t state) {
    mTransferState = state;
    mTransferBytes = Counted(mTransfer->Bytes());
    mTransferSize = Counted(mTransfer->Size());
    Raise(SerialEventTransfer);
}

void PDQComm::SetTransferState(std::int16_t iState) {
    if (iState != TransferAborting || !mTransfer) return;
    // The other side hears of it now, not behind kilobytes that it will not keep.
    if (mOpen != nullptr && mTransfer->IsRunning()) mOpen->DiscardOutput();
    if (!mTransferStarted) mTransfer->Break("cancelled");
    mTransfer->Abort(mReactor.NowUs());
    SendForTransfer(); // the other side is told even when nobody yields any more
    if (mTransfer) mTransferDue->SetDue(mReactor.NowUs());
}

std::string PDQComm::TransferFileName() const {
    return mTransfer ? mTransfer->Name() : mTransferName;
}

void PDQComm::SetTransferFileName(std::string_view sName) {
    if (mTransfer) mTransfer->SetName(sName);
    mTransferName = sName;
}

} // namespace qncomm

#include "TransferInProgress.h"

#include "ReceivedFile.h"
#include "SentFile.h"
#include "link/SerialControl.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <utility>

namespace qncomm {
namespace {

transfer::Time TimeOf(std::int64_t us) {
    return transfer::Time(us);
}

std::unique_ptr<transfer::TransferEngine> EngineFor(const TransferOrder& order) {
    if (order.byZModem) {
        if (order.sends) return std::make_unique<transfer::ZModemSender>();
        return std::make_unique<transfer::ZModemReceiver>();
    }
    transfer::KermitOptions options;
    options.sevenBits = order.sevenBits;
    options.reliable = order.reliable;
    if (order.sends) return std::make_unique<transfer::KermitSender>(options);
    return std::make_unique<transfer::KermitReceiver>(options);
}

} // namespace

TransferInProgress::TransferInProgress(TransferOrder order, Report report)
    : mOrder(std::move(order)),
      mReport(std::move(report)),
      mEngine(EngineFor(mOrder)),
      mState(TransferIdle),
      mLook(std::move(mOrder.look)) {
    if (mOrder.sends) {
        auto file = std::make_unique<SentFile>(mOrder.path, mOrder.preferences.resume,
                                               [this](std::uint64_t size) {
                                                   mSize = size;
                                                   Enter(TransferAnnounced); // may rename it
                                                   return mOrder.name;
                                               });
        mReason = file->Refusal();
        mSource = std::move(file);
    } else {
        mSink = std::make_unique<ReceivedFile>(mOrder.path, mOrder.preferences,
                                               [this](const transfer::FileInfo& file) {
                                                   mOrder.name = file.name;
                                                   mSize = file.size;
                                                   Enter(TransferAnnounced);
                                               });
    }
}

TransferInProgress::~TransferInProgress() = default;

void TransferInProgress::Start(std::int64_t nowUs) {
    Enter(TransferStarted);
    if (!mReason.empty()) {
        mBroken = true; // the file cannot be read: nothing goes to the line
        return;
    }
    mLook.Begin(nowUs);
    if (!mLook.Holds()) BeginProtocol(nowUs);
}

void TransferInProgress::BeginProtocol(std::int64_t nowUs) {
    mLook.EndHold();
    mEngine->Start(TimeOf(nowUs));
    mEngine->Receive(mLook.Heard(), TimeOf(nowUs));
    Serve(nowUs);
}

bool TransferInProgress::IsRefused(std::string_view bytes, std::int64_t nowUs) {
    const bool opening = mLook.Holds() || mEngine->Phase() == transfer::Phase::Starting;
    if (mBroken || !opening || !mLook.Refuses(bytes, nowUs)) return false;
    mRefused = true;
    Break("the other side refuses the transfer");
    return true;
}

void TransferInProgress::Receive(std::string_view bytes, std::int64_t nowUs) {
    const bool held = mLook.Holds();
    if (IsRefused(bytes, nowUs)) return;
    if (held) {
        if (!mLook.Holds()) BeginProtocol(nowUs);
        return; // what came is given to the protocol when that begins
    }
    mEngine->Receive(bytes, TimeOf(nowUs));
    Serve(nowUs);
}

std::optional<std::int64_t> TransferInProgress::NextDue() const {
    if (mLook.Holds()) return mLook.HeldUntil();
    const auto deadline = mEngine->NextDeadline();
    if (!deadline) return std::nullopt;
    return deadline->count();
}

void TransferInProgress::Tick(std::int64_t nowUs) {
    if (mLook.Holds()) {
        if (nowUs >= mLook.HeldUntil()) BeginProtocol(nowUs);
        return;
    }
    mEngine->Tick(TimeOf(nowUs));
    Serve(nowUs);
}

std::string_view TransferInProgress::Output(std::int64_t nowUs) {
    if (mBroken) return {};
    const std::string_view output =
        transfer::ServedOutput(*mEngine, mSource.get(), mSink.get(), TimeOf(nowUs));
    ReportProgress();
    return output;
}

void TransferInProgress::Sent(std::size_t count, std::int64_t nowUs) {
    mEngine->Sent(count, TimeOf(nowUs));
}

void TransferInProgress::Abort(std::int64_t nowUs) {
    if (mLook.Holds() && !mBroken) BeginProtocol(nowUs); // only a protocol can tell the other side
    mEngine->Cancel(TimeOf(nowUs));
    Serve(nowUs);
}

void TransferInProgress::Break(const std::string& reason) {
    mBroken = true;
    if (mReason.empty()) mReason = reason;
}

bool TransferInProgress::IsRunning() const {
    return !mBroken && mEngine->Outcome() == transfer::Outcome::Running;
}

bool TransferInProgress::IsOver() const {
    return mBroken || mEngine->IsOver();
}

std::string TransferInProgress::Finish() {
    const bool good = !mBroken && mEngine->Outcome() == transfer::Outcome::Success
                      && mEngine->Progress().files > 0;
    if (!good && mReason.empty()) mReason = WhyNot();
    if (good) ReportProgress();
    mSink.reset(); // what is not whole goes before anybody is told
    mSource.reset();
    Enter(good ? TransferIdle : TransferFailed);
    return mRefused ? mLook.Heard() : mEngine->TakeUnread();
}

std::string TransferInProgress::WhyNot() const {
    if (!mEngine->Reason().empty()) return mEngine->Reason();
    const bool refused = mOrder.sends && mEngine->Progress().skipped > 0;
    return refused ? "the receiver did not want the file" : "no file was transferred";
}

std::uint64_t TransferInProgress::Bytes() const {
    return mEngine->Progress().bytes;
}

std::uint64_t TransferInProgress::Size() const {
    return mSize.value_or(mEngine->Progress().size.value_or(0));
}

void TransferInProgress::Serve(std::int64_t nowUs) {
    transfer::ServeRequests(*mEngine, mSource.get(), mSink.get(), TimeOf(nowUs));
    ReportProgress();
}

void TransferInProgress::Enter(std::int16_t state) {
    mState = state;
    mReport(state);
}

void TransferInProgress::ReportProgress() {
    if (mEngine->Phase() == transfer::Phase::Closing && mState != TransferClosing) {
        mReportedBytes = Bytes();
        Enter(TransferMoving); // the last bytes count too
        Enter(TransferClosing);
        return;
    }
    if (mEngine->Phase() != transfer::Phase::Moving || Bytes() == mReportedBytes) return;
    mReportedBytes = Bytes();
    Enter(TransferMoving);
}

} // namespace qncomm

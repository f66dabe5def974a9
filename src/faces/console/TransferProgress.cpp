#include "console/TransferProgress.h"

#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t LookMs = 1000;
constexpr std::int64_t BetweenReportsMs = 100;
constexpr std::int32_t Done = 100;

} // namespace

TransferProgress::TransferProgress(MessageLoop& loop, StatusLine& status, Look look, Report report)
    : mLoop(loop),
      mStatus(status),
      mLook(std::move(look)),
      mReport(std::move(report)),
      mStart(loop.NowMs()),
      mTimer(loop.StartTimer(LookMs, [this] { Update(); })) {}

void TransferProgress::Show(const std::string& sMessage, std::int32_t lPercent) {
    mMessage = sMessage;
    mPercent = lPercent;
    Update();
}

TransferReading TransferProgress::Whole() const {
    const Moved moved = mLook();
    return mMeter.Whole(mLoop.NowMs(), moved.bytes, moved.size);
}

void TransferProgress::Update() {
    const Moved moved = mLook();
    const TransferReading reading = mMeter.At(mLoop.NowMs(), moved.bytes, moved.size);
    if (!mMessage.empty()) {
        // Without a percentage of its own the operation is over.
        if (mPercent < 0)
            mStatus.Show(mMessage, mPercent);
        else
            mStatus.Show(mMessage, reading.percent.value_or(mPercent), RateText(reading));
    }
    if (reading.bytes > 0) ReportReading(reading);
}

void TransferProgress::ReportReading(const TransferReading& reading) {
    const std::int64_t now = mLoop.NowMs();
    const std::int64_t since = mReportedAt ? now - *mReportedAt : LookMs;
    const bool changed = reading.percent != mReported;
    const bool finished = changed && reading.percent == Done;
    if (!finished && since < (changed ? BetweenReportsMs : LookMs)) return;
    if (mReported == Done) return; // nothing is left to tell
    mReported = reading.percent;
    mReportedAt = now;
    if (mReport) mReport(reading);
}

} // namespace qncomm

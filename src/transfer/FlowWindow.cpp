#include "FlowWindow.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr std::size_t Samples = 32;
constexpr int RoundsToSettle = 2;
constexpr double Growth = 1.25;
// What the two ends and the driver usually take to get to their bytes.
constexpr Time Jitter = std::chrono::milliseconds(15);
// Seconds that one of them may be busy with something else before the line falls idle, while damage
// does not forbid it.
constexpr double Slack = 0.25;
constexpr double LongestDrain = 10; // seconds
constexpr std::uint64_t Largest = 4U << 20U;
// What any line is tried with: the short packets before the data say little about its rate.
constexpr double First = 1024;

double Seconds(Time span) {
    return std::max(1e-4, static_cast<double>(span.count()) * 1e-6);
}

} // namespace

void FlowWindow::Marked(std::uint64_t position, Time now) {
    if (mAcknowledgedAt == Time{0}) mAcknowledgedAt = now;
    mMarks.push_back({position, now, mAcknowledged, mAcknowledgedAt});
}

void FlowWindow::Acknowledged(std::uint64_t position, Time now, bool bTimed) {
    if (position < mAcknowledged) return;
    bool found = false;
    Mark mark{};
    while (!mMarks.empty() && mMarks.front().position <= position) {
        mark = mMarks.front();
        mMarks.pop_front();
        found = true;
    }
    const std::uint64_t before = mAcknowledged;
    mAcknowledged = position;
    std::erase_if(mFormer, [&](std::uint64_t former) { return former <= position; });
    if (bTimed && found && mark.position == position && position > before) TakeSample(mark, now);
    mAcknowledgedAt = now;
}

void FlowWindow::TakeSample(const Mark& mark, Time now) {
    mSampled = true;
    mRoundTrip.Saw(now - mark.at);
    if (mShortest == Time{0} || now - mark.at < mShortest)
        mShortest = std::max(now - mark.at, Time{1});
    const double bytes = static_cast<double>(mAcknowledged - mark.acknowledged);
    mSamples.push_back(bytes / Seconds(now - mark.acknowledgedAt));
    if (mSamples.size() > Samples) mSamples.pop_front();
    if (mAcknowledged >= mRoundEnd) Grow();
}

// Once a round trip, until the rate stops rising: the window doubles.
void FlowWindow::Grow() {
    mRoundEnd = mMarks.empty() ? mAcknowledged + 1 : mMarks.back().position;
    if (mRounds >= RoundsToSettle) return;
    const double rate = Rate();
    if (rate >= mGrowFrom * Growth) {
        mGrowFrom = rate;
        mRounds = 0;
    } else {
        ++mRounds;
    }
    mOpening = std::min(mOpening * 2, Largest);
}

void FlowWindow::Restart(std::uint64_t position) {
    if (!mMarks.empty() && !mSampled) Narrow();
    mSampled = false;
    std::erase_if(mFormer, [&](std::uint64_t former) { return former <= position; });
    for (const Mark& mark : mMarks) {
        if (mark.position > position) mFormer.push_back(mark.position);
    }
    mMarks.clear();
    mAcknowledged = position;
    mAcknowledgedAt = Time{0};
    mRoundEnd = 0;
}

// No mark came through since the last restart: the window is too wide for this damage. What it was
// taken from may have been a burst of the line, which nothing contradicts while no mark comes
// through.
void FlowWindow::Narrow() {
    for (double& sample : mSamples) {
        sample /= 2;
    }
    mOpening /= 2;
}

bool FlowWindow::MayAnswerFormer(std::uint64_t position) const {
    return std::ranges::find(mFormer, position) != mFormer.end();
}

double FlowWindow::Rate() const {
    double best = 0;
    for (const double sample : mSamples) {
        best = std::max(best, sample);
    }
    return best;
}

std::uint64_t FlowWindow::Size(std::uint64_t piece) const {
    if (mSamples.empty()) return std::max(mOpening, piece * 2);
    const double slack = Spare(Rate() * Slack);
    const double jitter = Rate() * Seconds(Jitter);
    const bool losesAll = mErrorRate > 0 && mDamage == Damage::LosesAll;
    const double held =
        Rate() * Seconds(mShortest) + (losesAll ? Spare(jitter + slack) : jitter + slack);
    // Twice what the line is known to hold shows whether it holds more; beyond that a slow line
    // with a deep buffer would only be filled for seconds, and a cancel would wait behind it.
    const double twice = std::max(First, 2 * Rate() * Seconds(mShortest) + slack);
    const double open =
        mRounds < RoundsToSettle ? std::min(static_cast<double>(mOpening), twice) : 0;
    const auto size = static_cast<std::uint64_t>(std::max(held, open));
    // A piece that begins inside the window may reach beyond it: where that costs most, it is all
    // that is added.
    return std::min(Largest, losesAll ? std::max(size, piece) : size + 2 * piece);
}

double FlowWindow::Spare(double bytes) const {
    return mErrorRate > 0 ? std::min(bytes, mTolerance / mErrorRate) : bytes;
}

Time FlowWindow::RetryAfter(std::uint64_t piece) const {
    const double rate = Rate();
    if (rate <= 0) return mRoundTrip.RetryAfter();
    const double full = static_cast<double>(Size(piece)) / rate;
    const Time drained{static_cast<Time::rep>(std::min(full, LongestDrain) * 1e6)};
    return mRoundTrip.RetryAfter() + drained;
}

} // namespace qncomm::transfer

#include "RoundTrip.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr Time ShortestRetry = std::chrono::milliseconds(200);
constexpr Time LongestRetry = std::chrono::seconds(10);

} // namespace

void RoundTrip::Saw(Time span) {
    span = std::max(span, Time{1});
    if (mSmoothed == Time{0}) {
        mSmoothed = span;
        mDeviation = span / 2;
        mShortest = span;
        return;
    }
    const Time off = span > mSmoothed ? span - mSmoothed : mSmoothed - span;
    mDeviation = (mDeviation * 3 + off) / 4;
    mSmoothed = std::max((mSmoothed * 7 + span) / 8, Time{1});
    mShortest = std::min(mShortest, span);
}

Time RoundTrip::RetryAfter(Time first) const {
    if (mSmoothed == Time{0}) return first;
    return std::clamp(mSmoothed * 2 + mDeviation * 4, ShortestRetry, LongestRetry);
}

} // namespace qncomm::transfer

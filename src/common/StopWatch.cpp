#include "common/StopWatch.h"

#include <algorithm>
#include <limits>

namespace qncomm {

StopWatch::StopWatch(const Clock& clock) : mClock(&clock), mStart(clock.NowMs()) {}

void StopWatch::Restart() {
    mStart = mClock->NowMs();
}

std::int32_t StopWatch::ElapsedMs() const {
    const std::int64_t elapsed = mClock->NowMs() - mStart;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(elapsed, std::numeric_limits<std::int32_t>::max()));
}

std::int32_t StopWatch::UntilExceeds(std::int32_t lLimit) const {
    const std::int64_t left = std::int64_t{lLimit} + 1 - ElapsedMs();
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(left, 0, std::numeric_limits<std::int32_t>::max()));
}

} // namespace qncomm

#pragma once

#include "platform/Reactor.h"

#include <cstdint>

namespace qncomm {

/// Microseconds of the monotonic clock.
std::int64_t MonotonicUs();

/// That clock for a wait without a reactor.
class SystemClock final : public Clock {
  public:
    /// Milliseconds of the monotonic clock.
    std::int64_t NowMs() const override { return MonotonicUs() / 1000; }
};

/// Sleeps until the descriptor is ready or lLimitUs microseconds have passed; signals do not cut it
/// short. Returns what it is ready for, nothing after the limit. fd -1 only sleeps. Calls no
/// handler.
FdEvents WaitForFd(int fd, FdEvents events, std::int64_t lLimitUs);

} // namespace qncomm

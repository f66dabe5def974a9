#pragma once

#include "common/MessageLoop.h"

#include <cstdint>

namespace qncomm {

/// Measures elapsed milliseconds on a clock that is passed in and outlives it. Running from its
/// construction.
class StopWatch {
  public:
    /// Counts from now on.
    explicit StopWatch(const Clock& clock);

    /// Counts from 0 again.
    void Restart();

    /// Milliseconds since construction or the last restart, at most the largest 32-bit number.
    std::int32_t ElapsedMs() const;

    /// How long a wait may sleep so that it wakes when more than lLimit ms have passed: at least 1
    /// ms until then, 0 once it is over.
    std::int32_t UntilExceeds(std::int32_t lLimit) const;

  private:
    const Clock* mClock;
    std::int64_t mStart;
};

} // namespace qncomm

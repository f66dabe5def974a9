#pragma once

#include "transfer/TransferTypes.h"

namespace qncomm::transfer {

/// How long the other side takes to answer, and from that how long to wait for an answer before it
/// counts as lost.
class RoundTrip {
  public:
    void Saw(Time span);
    /// `first` when nothing was seen yet.
    [[nodiscard]] Time RetryAfter(Time first = std::chrono::seconds(3)) const;
    /// The shortest that was seen, 0 when none was.
    [[nodiscard]] Time Shortest() const { return mShortest; }

  private:
    Time mSmoothed{0};
    Time mDeviation{0};
    Time mShortest{0};
};

} // namespace qncomm::transfer

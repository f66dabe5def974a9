#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace qncomm {

/// How far a transfer is.
struct TransferReading {
    std::int64_t bytes = 0;                  ///< that have moved, including what was resumed
    std::optional<std::int64_t> size;        ///< nothing while it is not known
    std::optional<std::int32_t> percent;     ///< whole ones, 0 to 100; nothing without a size
    std::optional<std::int64_t> rate;        ///< bytes per second; nothing until there is one
    std::optional<std::int64_t> secondsLeft; ///< rounded up; nothing without a size or at rate 0
};

/// Such as "11.3 kB/s, 1:25 left"; empty without a rate.
std::string RateText(const TransferReading& reading);

/// Tells how fast bytes travel, on times that are passed in: the mean of the last five seconds, so
/// that a stall shows soon and a single late packet hardly does. What was there before the first
/// bytes, as when a broken transfer is resumed, does not count as travelled.
class TransferMeter {
  public:
    /// lNowMs never goes back. lSize 0 is a size that is not known.
    TransferReading At(std::int64_t lNowMs, std::int64_t lBytes, std::int64_t lSize);

    /// The same with the mean rate since the first bytes.
    TransferReading Whole(std::int64_t lNowMs, std::int64_t lBytes, std::int64_t lSize) const;

  private:
    struct Sample {
        std::int64_t ms;
        std::int64_t bytes;
    };

    std::optional<Sample> mFirst;
    std::deque<Sample> mWindow;
};

} // namespace qncomm

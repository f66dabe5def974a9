#pragma once

#include "transfer/TransferTypes.h"

#include <deque>
#include <random>
#include <string>

namespace qncomm::testing {

using namespace transfer;

/// What can go wrong on a line; probabilities are per byte.
struct LineFaults {
    double flip = 0;
    double drop = 0;
    double repeat = 0;
    double insert = 0;
    double stall = 0; ///< the line stands still for stallFor
    Time stallFor{std::chrono::seconds(2)};
    std::uint64_t flipAt = 0;       ///< this byte alone, counted from 1; 0: none
    std::uint64_t cutAfter = ~0ULL; ///< bytes, then nothing arrives any more

    bool operator==(const LineFaults&) const = default;
};

struct LineSettings {
    double rate = 0; ///< bytes per second, 0: at once
    Time latency{0};
    std::size_t buffer = 4096; ///< bytes that the line takes before they have left
    /// So much of a pause the line makes up for at once, as a relay does that keeps to its rate
    /// only on average.
    Time burst{0};
    LineFaults faults;
    bool sevenBits = false; ///< the top bit does not survive
};

/// One direction of a line, on a clock that its caller drives.
class SimulatedLine {
  public:
    SimulatedLine(const LineSettings& settings, std::uint64_t seed)
        : mSettings(settings), mRandom(seed) {}

    /// Takes what fits and says how much that was.
    std::size_t Write(std::string_view bytes);
    /// Lets time pass up to `now`.
    void Advance(Time now);
    /// What has arrived by then.
    std::string Arrived(Time now);
    /// Nothing is on the way.
    [[nodiscard]] bool IsIdle() const { return mWaiting.empty() && mFlying.empty(); }
    [[nodiscard]] std::uint64_t Faults() const { return mFaults; }
    [[nodiscard]] std::uint64_t Carried() const { return mCarried; }
    [[nodiscard]] const std::string& Log() const { return mLog; }

  private:
    struct Flight {
        Time at;
        std::string bytes;
    };

    std::string Damage(std::string_view bytes, Time now);
    bool Chance(double probability);

    LineSettings mSettings;
    std::mt19937_64 mRandom;
    std::string mWaiting;
    std::deque<Flight> mFlying;
    double mCredit = 0;
    Time mLast{0};
    Time mStalledTo{0};
    std::uint64_t mFaults = 0;
    std::uint64_t mCarried = 0;
    std::string mLog;
};

} // namespace qncomm::testing

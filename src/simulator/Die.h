#pragma once

#include "simulator/Options.h"

#include <random>

namespace qnsim {

/// Strikes at random, at a rate; the same seed strikes the same times.
class Die {
  public:
    explicit Die(const FaultRate& fault) : mRate(fault.rate), mSource(fault.seed) {}

    /// Whether it can strike at all.
    bool IsLoaded() const { return mRate > 0; }
    bool Strikes() {
        return IsLoaded() && std::uniform_real_distribution<double>(0, 1)(mSource) < mRate;
    }
    /// A random number from 0 up to and without limit.
    std::uint64_t Below(std::uint64_t limit) { return mSource() % limit; }

  private:
    double mRate;
    std::mt19937_64 mSource;
};

} // namespace qnsim

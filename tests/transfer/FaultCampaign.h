#pragma once

#include <cstdint>
#include <cstdlib>

namespace qncomm::transfer::testing {

// How many faults a campaign goes through: QN_FAULTS, or what an ordinary run has time for.
inline std::uint64_t FaultsWanted() {
    const char* wanted = std::getenv("QN_FAULTS"); // NOLINT(concurrency-mt-unsafe): no threads here
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 10000;
}

// Whether every combination of settings is to be tried instead of a choice that covers each pair.
inline bool EveryCombinationIsWanted() {
    return std::getenv("QN_EVERY_COMBINATION")
           != nullptr; // NOLINT(concurrency-mt-unsafe): as above
}

// Other people's programs take their time over each, so they get one of this many.
inline constexpr std::uint64_t kFaultsForOneOfAPeer = 50;

} // namespace qncomm::transfer::testing

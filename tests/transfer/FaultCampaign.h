#pragma once

#include <cstdint>
#include <cstdlib>

namespace qncomm::testing {

// How many faults a campaign goes through: QN_FAULTS, or what an ordinary run has time for.
inline std::uint64_t FaultsWanted() {
    const char* wanted = std::getenv("QN_FAULTS"); // NOLINT(concurrency-mt-unsafe): no threads here
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 10000;
}

// Of how many transfers the tail is looked at: QN_RUNS, or what an ordinary run has time for.
inline std::uint64_t RunsWanted() {
    const char* wanted = std::getenv("QN_RUNS"); // NOLINT(concurrency-mt-unsafe): as above
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 100;
}

// The number of a campaign's first transfer: what goes wrong in each follows from its number, so
// that shares of a campaign that begin far apart repeat nothing, and one that failed is repeated
// alone.
inline std::uint64_t FirstSeed() {
    const char* first = std::getenv("QN_FIRST_SEED"); // NOLINT(concurrency-mt-unsafe): as above
    return first != nullptr ? std::strtoull(first, nullptr, 10) : 1;
}

// Whether every combination of settings is to be tried instead of a choice that covers each pair.
inline bool EveryCombinationIsWanted() {
    return std::getenv("QN_EVERY_COMBINATION")
           != nullptr; // NOLINT(concurrency-mt-unsafe): as above
}

// Other people's programs take their time over each, so they get one of this many.
inline constexpr std::uint64_t FaultsForOneOfAPeer = 50;

} // namespace qncomm::testing

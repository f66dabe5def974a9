#pragma once

#include "testing/programs/PeerProcess.h"
#include "testing/transfer/SimulatedLine.h"

#include <cstdint>

namespace qncomm::bench {

struct RelayResult {
    bool bothEnded = false;
    double seconds = 0;     // from the first byte to the end of the last program
    double dataSeconds = 0; // from the first byte to the last that carried content
    std::uint64_t faults = 0;
    std::uint64_t carried = 0; // bytes from the first to the second
};

// Carries bytes between two programs as `line` says, in both directions, until both have ended or
// `limit` seconds are over.
RelayResult RunRelay(qncomm::testing::PeerProcess& first, qncomm::testing::PeerProcess& second,
                     const qncomm::testing::LineSettings& line, std::uint64_t seed, double limit);

} // namespace qncomm::bench

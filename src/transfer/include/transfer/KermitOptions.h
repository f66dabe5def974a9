#pragma once

#include "transfer/TransferTypes.h"

namespace qncomm::transfer {

/// Which control characters of a file travel as a printable pair.
enum class KermitPrefixing {
    All,      ///< every one: any line carries it
    Cautious, ///< those that lines, drivers and terminal servers are known to act on
    Least,    ///< only those that Kermit itself needs; for lines that carry every byte
};

/// What one side of a Kermit transfer wants; both sides then use what both can.
struct KermitOptions {
    std::size_t packet = 9024; ///< longest packet to receive and to send, 20 to 9024 bytes
    unsigned window = 31;      ///< packets under way, 1 to 31
    unsigned check = 3;        ///< kind of block check to ask for, 1 to 3
    KermitPrefixing prefixing = KermitPrefixing::Cautious; ///< of a sender
    bool sevenBits = false; ///< the line carries seven bits: the eighth travels as a prefix
    bool repeats = true;    ///< runs of one byte travel as a count
    bool attributes = true; ///< size, time and mode travel with the file
    /// The line loses and damages nothing and ends at the other side (a program in this process):
    /// data may stream without being acknowledged when the other side says the same. The first
    /// damage ends that; the file then goes on in windows from where it was whole.
    bool reliable = false;
    Time patience = std::chrono::seconds(50); ///< fail after this long without a valid packet
};

} // namespace qncomm::transfer

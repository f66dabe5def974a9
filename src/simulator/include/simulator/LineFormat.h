#pragma once

// The serial line as either end of it sees it.

#include <optional>

namespace qnsim {

/// A line's settings as one side knows them. An item that is absent is not carried by the endpoint
/// and never causes a mismatch: a pseudo-terminal has no data bits and no parity, a socket has none
/// of the four.
struct LineFormat {
    std::optional<int> baud;     ///< bits per second
    std::optional<int> dataBits; ///< 7 or 8
    std::optional<int> stopBits; ///< 1 or 2
    std::optional<char> parity;  ///< 'n', 'e', 'o', 'm' or 's'

    /// The same items are known and have the same values.
    bool operator==(const LineFormat&) const = default;
};

/// What the receiver at the host's end finds wrong with what the printer sends.
struct HostErrors {
    bool frame = false;  ///< a byte does not end where it should
    bool parity = false; ///< a byte's parity bit is not what its other bits ask for
};

} // namespace qnsim

#pragma once

namespace qncomm {

/// What a line's receiver found wrong with what it received.
struct LineErrors {
    bool frame = false; ///< a byte did not end where it should: the line has another rate or format
    bool overrun = false;  ///< a byte came before the device had given up the last one
    bool parity = false;   ///< a byte had the wrong parity bit: the line has another format
    bool overflow = false; ///< the system's buffer was full
};

} // namespace qncomm

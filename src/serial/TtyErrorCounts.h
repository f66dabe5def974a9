#pragma once

#include "serial/LineErrors.h"

#include <cstdint>
#include <optional>

namespace qncomm {

/// How often a device has met each kind of line error; its driver counts on from one user to the
/// next, and round.
struct TtyErrorCounts {
    std::uint32_t frame = 0;
    std::uint32_t overrun = 0;
    std::uint32_t parity = 0;
    std::uint32_t overflow = 0;
};

/// The counts of a tty's driver; nothing when it does not count, as that of a pseudo-terminal.
std::optional<TtyErrorCounts> ErrorCountsOf(int fd);

/// What was counted from one look to the next.
LineErrors ErrorsBetween(const TtyErrorCounts& before, const TtyErrorCounts& now);

} // namespace qncomm

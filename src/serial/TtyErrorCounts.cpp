#include "TtyErrorCounts.h"

#include <linux/serial.h>
#include <sys/ioctl.h>

namespace qncomm {

std::optional<TtyErrorCounts> ErrorCountsOf(int fd) {
    serial_icounter_struct counts{};
    if (::ioctl(fd, TIOCGICOUNT, &counts) != 0) return std::nullopt;
    const auto count = [](int value) { return static_cast<std::uint32_t>(value); };
    return TtyErrorCounts{count(counts.frame), count(counts.overrun), count(counts.parity),
                          count(counts.buf_overrun)};
}

LineErrors ErrorsBetween(const TtyErrorCounts& before, const TtyErrorCounts& now) {
    return {now.frame != before.frame, now.overrun != before.overrun, now.parity != before.parity,
            now.overflow != before.overflow};
}

} // namespace qncomm

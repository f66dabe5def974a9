#pragma once

#include "platform/AlarmQueue.h"
#include "platform/Reactor.h"

#include <cstddef>
#include <cstdint>
#include <poll.h>

namespace qncomm {

inline short PollBits(FdEvents events) {
    return static_cast<short>((events.readable ? POLLIN : 0) | (events.writable ? POLLOUT : 0));
}

inline FdEvents EventsOf(short bits) {
    return {(bits & POLLIN) != 0, (bits & POLLOUT) != 0,
            (bits & (POLLHUP | POLLERR | POLLNVAL)) != 0};
}

/// Sleeps in the kernel until an entry is ready or the time has passed (AlarmQueue::Never: for
/// ever). A signal that interrupts the sleep counts as nothing ready.
inline int Sleep(pollfd* entries, std::size_t count, std::int64_t us) {
    const bool forEver = us == AlarmQueue::Never;
    timespec limit{};
    if (!forEver) {
        limit.tv_sec = static_cast<time_t>(us / 1'000'000);
        limit.tv_nsec = static_cast<long>(us % 1'000'000) * 1000;
    }
    return ::ppoll(entries, count, forEver ? nullptr : &limit, nullptr);
}

/// now + us, as far as there is time.
inline std::int64_t LaterBy(std::int64_t now, std::int64_t us) {
    return us > AlarmQueue::Never - now ? AlarmQueue::Never : now + us;
}

} // namespace qncomm

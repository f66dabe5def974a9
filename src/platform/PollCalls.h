#pragma once

#include "platform/AlarmQueue.h"
#include "platform/Reactor.h"

#include <cstddef>
#include <cstdint>
#include <limits>
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
/// ever), a long time up to a ms longer. A signal that interrupts the sleep counts as nothing
/// ready.
inline int Sleep(pollfd* entries, std::size_t count, std::int64_t us) {
    // A process that is stopped and goes on: poll still ends when it was to end, ppoll then begins
    // anew with what was left. But poll counts in ms, which is too coarse for a short sleep.
    constexpr std::int64_t longUs = 100'000;
    constexpr std::int64_t mostUs = std::int64_t{std::numeric_limits<int>::max()} * 1000;
    if (us >= longUs && us <= mostUs)
        return ::poll(entries, count, static_cast<int>((us + 999) / 1000));
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

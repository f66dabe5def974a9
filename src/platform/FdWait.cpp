#include "platform/FdWait.h"

#include "PollCalls.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace qncomm {

std::int64_t MonotonicUs() {
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

FdEvents WaitForFd(int fd, FdEvents events, std::int64_t lLimitUs) {
    const std::int64_t until = LaterBy(MonotonicUs(), std::max<std::int64_t>(lLimitUs, 0));
    for (std::int64_t left = lLimitUs;; left = until - MonotonicUs()) {
        pollfd entry{fd, PollBits(events), 0};
        const int ready = Sleep(&entry, 1, std::max<std::int64_t>(left, 0));
        if (ready > 0) return EventsOf(entry.revents);
        if (ready == 0 || errno != EINTR || MonotonicUs() >= until) return {};
    }
}

} // namespace qncomm

#include "Clock.h"

#include <algorithm>
#include <ctime>

namespace qnsim {
namespace {

constexpr Micros MicrosPerSecond = 1'000'000;

} // namespace

Micros MonotonicNow() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return Micros{time.tv_sec} * MicrosPerSecond + time.tv_nsec / 1000;
}

void WaitUntil(std::vector<pollfd>& waits, std::optional<Micros> due) {
    timespec limit{};
    if (due) {
        const Micros left = std::max<Micros>(*due - MonotonicNow(), 0);
        limit.tv_sec = left / MicrosPerSecond;
        limit.tv_nsec = (left % MicrosPerSecond) * 1000;
    }
    ::ppoll(waits.data(), waits.size(), due ? &limit : nullptr, nullptr);
}

} // namespace qnsim

#include "platform/SystemReactor.h"

#include "platform/FdWait.h"

#include <utility>

namespace qncomm {

SystemReactor::SystemReactor(std::function<void()> earlier) : mAlarms(*this, std::move(earlier)) {}

SystemReactor::~SystemReactor() = default;

std::int64_t SystemReactor::NowUs() const {
    return MonotonicUs();
}

std::unique_ptr<RunningTimer> SystemReactor::StartTimer(std::int32_t lInterval,
                                                        std::function<void()> handler) {
    return mAlarms.StartTimer(lInterval, std::move(handler));
}

std::unique_ptr<Alarm> SystemReactor::CreateAlarm(std::function<void()> handler) {
    return mAlarms.Create(std::move(handler));
}

FdEvents SystemReactor::WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) {
    return WaitForFd(fd, events, lLimitUs);
}

} // namespace qncomm

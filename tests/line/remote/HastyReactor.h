#pragma once

#include "platform/PollLoop.h"

#include <algorithm>

namespace qncomm::testing {

/// A poll loop on which waiting for nothing is short: when a wait ends without an event after a
/// moment, the clock jumps to its end.
class HastyReactor final : public Reactor {
  public:
    static constexpr std::int64_t MomentUs = 200'000;

    std::int64_t NowUs() const override { return mLoop.NowUs() + mJumped; }
    void Yield(std::int32_t lLimit) override { mLoop.Yield(lLimit); }
    std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                             std::function<void()> handler) override {
        return mLoop.StartTimer(lInterval, std::move(handler));
    }
    std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                   std::function<void(FdEvents)> handler) override {
        return mLoop.Watch(fd, events, std::move(handler));
    }
    std::unique_ptr<Alarm> CreateAlarm(std::function<void()> handler) override {
        return mLoop.CreateAlarm(std::move(handler));
    }
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override {
        const FdEvents ready = mLoop.WaitFor(fd, events, std::min(lLimitUs, MomentUs));
        if (!ready.Any()) mJumped += std::max<std::int64_t>(lLimitUs - MomentUs, 0);
        return ready;
    }

  private:
    PollLoop mLoop;
    std::int64_t mJumped = 0;
};

} // namespace qncomm::testing

#pragma once

#include "platform/Reactor.h"

#include <map>

namespace qncomm::testing {

/// A reactor whose clock stands still until somebody waits. It has timers and alarms and no
/// descriptors: watching one fails the test.
class ManualReactor final : public Reactor {
  public:
    std::int64_t NowUs() const override { return mNow; }

    /// Fails the test and throws when waits never end (ten million of them).
    void Yield(std::int32_t lLimit) override;

    std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                             std::function<void()> handler) override;
    std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                   std::function<void(FdEvents)> handler) override;
    std::unique_ptr<Alarm> CreateAlarm(std::function<void()> handler) override;
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override;

    /// How often somebody yielded.
    std::int64_t Yields() const { return mYields; }

    /// Yields until lMilliseconds have passed.
    void Pass(std::int32_t lMilliseconds);

  private:
    class ManualAlarm;

    bool DispatchDue();
    void WorkTakesTime();

    std::int64_t mNow = 1'000'000;
    std::int64_t mYields = 0;
    std::int64_t mWorkedAt = 0; ///< when something was dispatched last, and how often then
    int mWork = 0;
    std::multimap<std::int64_t, ManualAlarm*> mDue;
};

} // namespace qncomm::testing

#pragma once

#include "platform/Reactor.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace qncomm::testing {

/// A reactor on a clock that moves only while somebody waits: to the next alarm, or to the end of
/// the wait. It knows no descriptors; what stands under a test says by alarms that it is ready.
class ManualReactor final : public Reactor {
  public:
    std::int64_t NowUs() const override { return mNowUs; }

    /// Fails the test and throws when waits never end.
    void Yield(std::int32_t lLimit) override;
    [[nodiscard]] std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                                           std::function<void()> handler) override;
    [[nodiscard]] std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                                 std::function<void(FdEvents)> handler) override;
    [[nodiscard]] std::unique_ptr<Alarm> CreateAlarm(std::function<void()> handler) override;
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override;

    /// How often somebody yielded.
    std::int32_t Yields() const { return mYields; }

  private:
    class ManualAlarm;
    class ManualTimer;

    bool RunDue();

    std::int64_t mNowUs = 1'000'000;
    std::int32_t mYields = 0;
    std::vector<ManualAlarm*> mAlarms;
};

} // namespace qncomm::testing

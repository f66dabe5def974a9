#pragma once

#include "platform/AlarmQueue.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace qncomm {

/// A reactor on this system's monotonic clock, with its alarms and timers. How it sleeps until they
/// are due and how it watches descriptors is left to the classes derived from it.
class SystemReactor : public Reactor {
  public:
    std::int64_t NowUs() const final;
    /// Calls the handler every lInterval ms (at least 1) while the returned object lives. Ticks
    /// that were missed during a long operation are not made up for.
    [[nodiscard]] std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                                           std::function<void()> handler) final;
    [[nodiscard]] std::unique_ptr<Alarm> CreateAlarm(std::function<void()> handler) final;
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override;

  protected:
    /// earlier, which may be empty, is told whenever something may be due sooner than before.
    explicit SystemReactor(std::function<void()> earlier = {});
    ~SystemReactor() override;
    SystemReactor(const SystemReactor&) = delete;
    SystemReactor& operator=(const SystemReactor&) = delete;

    /// What a derived class runs when its time has come.
    AlarmQueue mAlarms;
};

} // namespace qncomm

#pragma once

#include "platform/Reactor.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace qncomm {

/// The alarms and timers of a reactor: the reactor asks when the next is due, sleeps until then in
/// its own way and has the queue call what is due. It must live longer than the alarms and timers
/// that it made.
class AlarmQueue {
  public:
    /// Due at no time.
    static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

    /// The clock outlives the queue. earlier, which may be empty, is told whenever something may be
    /// due sooner than before.
    explicit AlarmQueue(const Reactor& clock, std::function<void()> earlier = {});
    ~AlarmQueue();
    AlarmQueue(const AlarmQueue&) = delete;
    AlarmQueue& operator=(const AlarmQueue&) = delete;

    /// An alarm that is not set yet (see Reactor::CreateAlarm).
    [[nodiscard]] std::unique_ptr<Alarm> Create(std::function<void()> handler);
    /// Calls the handler every lInterval ms (at least 1) while the returned object lives. Ticks
    /// that were missed during a long operation are not made up for.
    [[nodiscard]] std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                                           std::function<void()> handler);

    /// Calls what is due at that time, once each and in order of time. Returns whether there was
    /// anything; passes on what a handler throws, and what is left then stays due.
    bool RunDue(std::int64_t lNowUs);

    /// When the next is due, in microseconds of the clock; Never without any.
    std::int64_t NextDue() const;

  private:
    class Slot;
    class IntervalTimer;

    const Reactor& mClock;
    std::function<void()> mEarlier;
    std::vector<Slot*> mSlots;
    std::vector<Slot*> mDue; ///< those that the running round still has to call
};

} // namespace qncomm

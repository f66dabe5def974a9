#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace qncomm {

/// A monotonic clock. It is passed in wherever time is read, so that a test can drive it.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Milliseconds since an arbitrary start; never goes back.
    virtual std::int64_t NowMs() const = 0;
};

/// A timer that runs while this object lives.
class RunningTimer {
  public:
    virtual ~RunningTimer() = default;
};

/// What the system asks of its host's message loop. Every wait of the system ends up in Yield, so a
/// wait sleeps and never spins.
class MessageLoop : public Clock {
  public:
    /// Dispatches what is due (serial data, timers, the host's messages); when nothing was due,
    /// sleeps until something is or lLimit ms have passed, dispatches that and returns. A limit of
    /// 0 or less never sleeps. May return early. Throws what a handler throws, and
    /// OperationCancelled when the user ends the program.
    virtual void Yield(std::int32_t lLimit) = 0;

    /// Calls the handler from Yield every lInterval ms, for the first time after one interval,
    /// until the returned object goes away.
    [[nodiscard]] virtual std::unique_ptr<RunningTimer>
    StartTimer(std::int32_t lInterval, std::function<void()> handler) = 0;
};

} // namespace qncomm

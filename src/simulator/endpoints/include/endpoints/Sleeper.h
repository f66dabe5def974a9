#pragma once

#include "platform/Reactor.h"
#include "simulator/Options.h"

#include <memory>
#include <optional>

namespace qnsim {

/// Lets a server sleep in the loop between two rounds of its work. Ends before its loop.
class Sleeper {
  public:
    /// The loop is used, not owned.
    explicit Sleeper(qncomm::Reactor& loop);

    /// Microseconds of the loop's monotonic clock.
    Micros Now() const { return mLoop.NowUs(); }

    /// Dispatches what is due in the loop; when that is nothing, sleeps until something is or the
    /// time has come, without a time as long as it takes. May return early. Throws what a handler
    /// of the loop throws.
    void SleepUntil(std::optional<Micros> due);

  private:
    qncomm::Reactor& mLoop;
    std::unique_ptr<qncomm::Alarm> mAlarm;
};

} // namespace qnsim

#pragma once

// The clock that the servers run on, and how they sleep.

#include "simulator/Options.h"

#include <optional>
#include <poll.h>
#include <vector>

namespace qnsim {

/// Microseconds of the system's monotonic clock.
Micros MonotonicNow();

/// Sleeps until one of these is ready or the time has come; without a time as long as it takes.
void WaitUntil(std::vector<pollfd>& waits, std::optional<Micros> due);

} // namespace qnsim

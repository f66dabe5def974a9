#pragma once

// What the endpoints share: their system calls and the values that they return.

#include "endpoints/Endpoint.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// What the last system call's failure was while doing something.
OpenedEndpoint SystemFailure(std::string_view doing);

/// The action of a host that sends these bytes; none when there are none.
std::vector<HostAction> Sending(std::string bytes);

/// Reads at most max bytes without waiting. closed is set when the other side is gone, and left
/// alone otherwise.
std::string ReadSome(int descriptor, std::size_t max, bool& closed);

/// Watches a descriptor so that its events end the loop's sleep; whoever sleeps looks afterwards at
/// what there is to do.
std::unique_ptr<qncomm::FdWatch> WakeFor(qncomm::Reactor& loop, int descriptor,
                                         qncomm::FdEvents events);

} // namespace qnsim

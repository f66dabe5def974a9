#pragma once

#include "platform/Fd.h"

#include <cstdint>
#include <string>

namespace qncomm::testing {

/// A connection to a socket of the file system; none when nobody listens there.
Fd ConnectToPath(const std::string& path);
/// A connection to a TCP port of this machine; none when nobody listens there.
Fd ConnectToLoopback(std::uint16_t port);

} // namespace qncomm::testing

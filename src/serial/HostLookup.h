#pragma once

#include "platform/IoResult.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace qncomm {

struct SocketAddress {
    sockaddr_storage bytes{};
    socklen_t length = 0;
};

/// Finds the addresses of a host, in the order in which to try them. Takes at most lLimitUs
/// microseconds: the system's own look-up knows no limit, so it runs beside and is left behind when
/// it is late.
IoResult LookUpHost(Reactor& reactor, const std::string& sHost, const std::string& sService,
                    std::int64_t lLimitUs, std::vector<SocketAddress>& addresses);

} // namespace qncomm

#pragma once

#include "HostLookup.h"
#include "platform/Fd.h"
#include "platform/IoResult.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qncomm {

/// Makes connections to one host. It remembers the host's addresses from one to the next.
class SocketConnector {
  public:
    /// How long looking up and connecting may take together, in microseconds.
    static constexpr std::int64_t LongestConnectUs = 3'000'000;

    SocketConnector(Reactor& reactor, std::string sHost, std::string sService);

    /// On success fd owns a connection that never blocks and sends each byte when it is written.
    IoResult Connect(Fd& fd);

  private:
    IoResult ConnectTo(const SocketAddress& address, std::int64_t until, Fd& fd) const;

    Reactor& mReactor;
    std::string mHost;
    std::string mService;
    std::vector<SocketAddress> mAddresses; ///< of the last look-up that led to a connection
};

/// Reads and drops what has come. False when the connection is no longer up.
bool DrainSocket(int fd);

/// Whether bytes wait that have not been sent.
bool HasUnsent(int fd);

/// Makes the coming close drop what has not been sent, so that it does not arrive late.
void CloseHard(int fd);

} // namespace qncomm

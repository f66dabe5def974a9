#pragma once

#include "platform/IoResult.h"

#include <memory>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace qncomm {

struct SocketAddress {
    sockaddr_storage bytes{};
    socklen_t length = 0;
};

/// Asks for the addresses of a host, in the order in which to try them. A number is answered at
/// once; the system's own look-up knows no limit, so it runs beside, and who ends this object
/// leaves it behind.
class HostLookup {
  public:
    HostLookup(const std::string& sHost, const std::string& sService);

    /// Whether the answer is there, without waiting.
    bool IsDone();
    /// Readable once it is.
    int Handle() const;
    /// The answer; to be called when it is there, and once.
    IoResult Take(std::vector<SocketAddress>& addresses);

  private:
    struct Pending;

    std::shared_ptr<Pending> mPending;
    bool mDone = false;
    IoResult mFailure; ///< why nobody was asked
};

} // namespace qncomm

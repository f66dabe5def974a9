#pragma once

#include "HostLookup.h"
#include "platform/Fd.h"
#include "platform/IoResult.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qncomm {

/// Makes connections to one host. It remembers the host's addresses from one to the next.
class SocketConnector {
  public:
    /// How long looking up and connecting may take together, in microseconds.
    static constexpr std::int64_t LongestConnectUs = 3'000'000;
    /// For how long the end of a Reach stands, in microseconds.
    static constexpr std::int64_t TakeUs = 2'000'000;

    SocketConnector(Reactor& reactor, std::string sHost, std::string sService);

    /// Begins a connection to the address that led to the last one, or looks how far it is, without
    /// waiting: whether Connect would not be kept waiting. What is reached and not taken by Connect
    /// within TakeUs is let go of.
    bool Reach();

    /// On success fd owns a connection that never blocks and sends each byte when it is written.
    IoResult Connect(Fd& fd);

  private:
    IoResult ConnectTo(const SocketAddress& address, std::int64_t until, Fd& fd) const;
    void Reached(int error);
    void OnReachDue();

    Reactor& mReactor;
    std::string mHost;
    std::string mService;
    std::vector<SocketAddress> mAddresses; ///< of the last look-up that led to a connection
    std::optional<SocketAddress> mLast;    ///< which of them did
    Fd mReaching;                          ///< a connection that was begun, and is maybe there
    std::optional<IoResult> mReached;      ///< how that has ended
    std::unique_ptr<Alarm> mReachDue;      ///< ends the waiting for it, and what it stands for
};

/// Reads and drops what has come. False when the connection is no longer up.
bool DrainSocket(int fd);

/// Whether bytes wait that have not been sent.
bool HasUnsent(int fd);

/// Makes the coming close drop what has not been sent, so that it does not arrive late.
void CloseHard(int fd);

} // namespace qncomm

#pragma once

#include "HostLookup.h"
#include "platform/Fd.h"
#include "platform/IoResult.h"
#include "platform/Reactor.h"

#include <cstddef>
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

    /// Begins a connection, or looks how far it is, without waiting: whether Connect would not be
    /// kept waiting. The reactor's Yield goes on with it. What is reached and not taken by Connect
    /// within TakeUs is let go of.
    bool Reach();
    /// Sleeps until Reach may have got further or lLimitUs microseconds have passed, dispatching
    /// nothing.
    void Sleep(std::int64_t lLimitUs);

    /// On success fd owns a connection that never blocks and sends each byte when it is written.
    /// Sleeps for what Reach has not reached yet, dispatching nothing.
    IoResult Connect(Fd& fd);

  private:
    void Begin();
    void GoOn();
    bool TakeAddresses();
    bool TryNext();
    void Await(int fd, FdEvents events);
    void Reached(IoResult result);
    void GiveUp();
    void OnDue();

    Reactor& mReactor;
    std::string mHost;
    std::string mService;
    std::optional<HostLookup> mLookup;     ///< a late one is awaited by the next connection, too
    std::vector<SocketAddress> mAddresses; ///< of the last look-up, until they lead nowhere
    std::size_t mNext = 0;                 ///< which of them is tried next
    Fd mReaching;                          ///< a connection that was begun, and is maybe there
    int mAwaited = -1;                     ///< what must be ready before it goes on
    FdEvents mAwaitedFor;
    std::unique_ptr<FdWatch> mWatch;  ///< goes on with it
    IoResult mLast;                   ///< how the last address that was tried has ended
    std::optional<IoResult> mReached; ///< how all has ended
    bool mUnderWay = false;
    std::int64_t mUntilUs = 0;   ///< when it is given up
    std::unique_ptr<Alarm> mDue; ///< ends the waiting for it, and what it stands for
};

/// Reads and drops what has come. False when the connection is no longer up.
bool DrainSocket(int fd);

/// Whether bytes wait that have not been sent.
bool HasUnsent(int fd);

/// Makes the coming close drop what has not been sent, so that it does not arrive late.
void CloseHard(int fd);

} // namespace qncomm

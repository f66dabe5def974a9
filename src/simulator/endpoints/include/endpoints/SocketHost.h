#pragma once

// A listening socket and the one host that is connected to it.

#include "endpoints/Endpoint.h"
#include "platform/Fd.h"
#include "platform/Reactor.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace qnsim {

/// Who may reach a listening socket.
enum class Reach {
    ThisMachine, ///< programs of this machine, over its loopback address
    Everywhere,  ///< programs of every machine that reaches this one
};

/// Takes one host at a time; the next one waits until that has left.
class SocketHost {
  public:
    /// Watches its sockets on this loop, which is not owned and outlives it.
    explicit SocketHost(qncomm::Reactor& loop) : mLoop(loop) {}

    /// An empty text, or why it cannot listen; errno is the system's number then. port 0 takes any
    /// free one.
    std::string Listen(int port, Reach reach);
    /// The port that it listens on, 0 before Listen.
    int Port() const { return mPort; }

    /// Takes in a host when none is there. True when one has just come.
    bool Accept();
    /// Whether a host's connection is open.
    bool Connected() const { return static_cast<bool>(mHost); }
    /// Ends the host's connection.
    void HangUp();

    /// As Endpoint::Want.
    void Want(bool input, bool output);
    /// At most max bytes that the host has sent, nothing when there are none or it left.
    std::string Read(std::size_t max);
    /// Writes what fits now and returns how many bytes that was.
    std::size_t Write(std::string_view bytes);

  private:
    qncomm::Reactor& mLoop;
    qncomm::Fd mListener;
    qncomm::Fd mHost;
    std::unique_ptr<qncomm::FdWatch> mArrivals; ///< end before the sockets that they watch
    std::unique_ptr<qncomm::FdWatch> mTraffic;
    int mPort = 0;
};

} // namespace qnsim

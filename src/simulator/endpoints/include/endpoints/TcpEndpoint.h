#pragma once

// A socket that carries the line's bytes, as a device server would offer it.

#include "endpoints/SocketHost.h"

namespace qnsim {

/// Nothing of a host's line settings is seen.
class TcpEndpoint : public Endpoint {
  public:
    /// Listens on a port of this machine (0 takes any free one, which Address names) and watches
    /// its sockets on this loop.
    static OpenedEndpoint Open(qncomm::Reactor& loop, int port, Reach reach = Reach::ThisMachine);

    std::string Address() const override;
    void Want(bool input, bool output) override { mSocket.Want(input, output); }
    void Refresh() override { mSocket.Accept(); }
    /// Whether a host's connection is open.
    bool Connected() const override { return mSocket.Connected(); }
    LineFormat HostFormat() const override { return {}; }
    std::vector<HostAction> Receive(std::size_t max) override;
    std::size_t Write(std::string_view bytes) override { return mSocket.Write(bytes); }

  private:
    explicit TcpEndpoint(qncomm::Reactor& loop) : mSocket(loop) {}

    SocketHost mSocket;
};

} // namespace qnsim

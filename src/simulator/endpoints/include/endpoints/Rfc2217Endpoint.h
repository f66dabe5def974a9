#pragma once

// A remote serial port as a device server offers it (RFC 2217).

#include "endpoints/ComPortServer.h"
#include "endpoints/SocketHost.h"

namespace qnsim {

/// The host's whole line format is seen, its modem lines, breaks and purges too, and the printer's
/// modem lines and line errors are told. A new host finds the port at 9600 baud, no parity, 8 data
/// bits, 1 stop bit.
class Rfc2217Endpoint : public Endpoint {
  public:
    /// Listens on a port of this machine (0 takes any free one, which Address names) and watches
    /// its sockets on this loop.
    static OpenedEndpoint Open(qncomm::Reactor& loop, int port, Reach reach = Reach::ThisMachine);

    std::string Address() const override;
    void Want(bool input, bool output) override;
    void Refresh() override;
    /// Whether a host's connection is open.
    bool Connected() const override { return mSocket.Connected(); }
    LineFormat HostFormat() const override { return mPort.Format(); }
    std::vector<HostAction> Receive(std::size_t max) override;
    void ShowLines(bool dsr, bool cts) override;
    void ShowErrors(const HostErrors& errors) override;
    std::size_t Write(std::string_view bytes) override;

  private:
    explicit Rfc2217Endpoint(qncomm::Reactor& loop) : mSocket(loop) {}

    void Flush();

    SocketHost mSocket;
    ComPortServer mPort; ///< of the host that is there
    bool mDsr = true;
    bool mCts = true;
};

} // namespace qnsim

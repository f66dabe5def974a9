// A socket on this machine's own address, as a device server would offer it.
#pragma once

#include "Endpoint.h"

namespace qnsim {

/// Serves one host at a time; the next one waits until that has left. Nothing of a host's line
/// settings is seen.
class TcpEndpoint : public Endpoint {
  public:
    /// port 0 takes any free one; Address names it.
    static OpenedEndpoint Open(int port);

    std::string Address() const override;
    void AddWaits(std::vector<pollfd>& waits, bool wantInput, bool wantOutput) override;
    void Refresh() override;
    bool Connected() const override { return mHost.IsOpen(); }
    LineFormat HostFormat() const override { return {}; }
    std::string Read(std::size_t max) override;
    std::size_t Write(std::string_view bytes) override;

  private:
    TcpEndpoint(Descriptor listener, int port);

    Descriptor mListener;
    Descriptor mHost;
    int mPort;
};

} // namespace qnsim

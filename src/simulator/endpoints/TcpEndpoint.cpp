#include "TcpEndpoint.h"

namespace qnsim {

OpenedEndpoint TcpEndpoint::Open(int port, Reach reach) {
    auto endpoint = std::make_unique<TcpEndpoint>();
    const std::string failed = endpoint->mSocket.Listen(port, reach);
    if (!failed.empty()) return SystemFailure(failed);
    return {std::move(endpoint), 0, {}};
}

std::string TcpEndpoint::Address() const {
    return "tcp://127.0.0.1:" + std::to_string(mSocket.Port());
}

void TcpEndpoint::AddWaits(std::vector<pollfd>& waits, bool wantInput, bool wantOutput) {
    mSocket.AddWaits(waits, wantInput, wantOutput);
}

std::vector<HostAction> TcpEndpoint::Receive(std::size_t max) {
    return Sending(mSocket.Read(max));
}

} // namespace qnsim

#include "endpoints/TcpEndpoint.h"

#include "EndpointCalls.h"

namespace qnsim {

OpenedEndpoint TcpEndpoint::Open(qncomm::Reactor& loop, int port, Reach reach) {
    std::unique_ptr<TcpEndpoint> endpoint(new TcpEndpoint(loop));
    const std::string failed = endpoint->mSocket.Listen(port, reach);
    if (!failed.empty()) return SystemFailure(failed);
    return {std::move(endpoint), 0, {}};
}

std::string TcpEndpoint::Address() const {
    return "tcp://127.0.0.1:" + std::to_string(mSocket.Port());
}

std::vector<HostAction> TcpEndpoint::Receive(std::size_t max) {
    return Sending(mSocket.Read(max));
}

} // namespace qnsim

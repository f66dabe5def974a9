#include "endpoints/Rfc2217Endpoint.h"

#include "EndpointCalls.h"

namespace qnsim {
namespace {

/// Bytes of unsent answers beyond which a host that asks much and reads nothing is not read either.
constexpr std::size_t MostUnsent = 64UL * 1024;
constexpr std::size_t MostTaken = 16UL * 1024;

} // namespace

OpenedEndpoint Rfc2217Endpoint::Open(qncomm::Reactor& loop, int port, Reach reach) {
    std::unique_ptr<Rfc2217Endpoint> endpoint(new Rfc2217Endpoint(loop));
    const std::string failed = endpoint->mSocket.Listen(port, reach);
    if (!failed.empty()) return SystemFailure(failed);
    return {std::move(endpoint), 0, {}};
}

std::string Rfc2217Endpoint::Address() const {
    return "rfc2217://127.0.0.1:" + std::to_string(mSocket.Port());
}

void Rfc2217Endpoint::Want(bool input, bool output) {
    const bool unsent = !mPort.Output().empty();
    mSocket.Want(input && mPort.Output().size() < MostUnsent,
                 unsent || (output && !mPort.Suspended()));
}

void Rfc2217Endpoint::Refresh() {
    if (mSocket.Accept()) {
        mPort = ComPortServer();
        mPort.ShowLines(mDsr, mCts);
    }
    Flush();
}

std::vector<HostAction> Rfc2217Endpoint::Receive(std::size_t max) {
    if (mPort.Output().size() >= MostUnsent) return {};
    return mPort.Receive(mSocket.Read(max));
}

void Rfc2217Endpoint::ShowLines(bool dsr, bool cts) {
    mDsr = dsr;
    mCts = cts;
    mPort.ShowLines(dsr, cts);
    Flush();
}

void Rfc2217Endpoint::ShowErrors(const HostErrors& errors) {
    mPort.ShowErrors(errors);
    Flush();
}

std::size_t Rfc2217Endpoint::Write(std::string_view bytes) {
    if (mPort.Suspended() || !mPort.Output().empty()) return 0;
    const std::string_view taken = bytes.substr(0, MostTaken);
    mPort.Send(taken);
    Flush();
    return taken.size();
}

void Rfc2217Endpoint::Flush() {
    std::string& output = mPort.Output();
    if (!output.empty() && mSocket.Connected()) output.erase(0, mSocket.Write(output));
}

} // namespace qnsim

#include "SocketHost.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace qnsim {
namespace {

/// The socket calls take every family's address through one type.
sockaddr* AsAddress(sockaddr_in& address) {
    return static_cast<sockaddr*>(static_cast<void*>(&address));
}

void SetOption(int descriptor, int level, int option) {
    const int yes = 1;
    ::setsockopt(descriptor, level, option, &yes, sizeof(yes));
}

} // namespace

std::string SocketHost::Listen(int port, Reach reach) {
    Descriptor listener(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!listener.IsOpen()) return "cannot open a socket";
    SetOption(listener.Get(), SOL_SOCKET, SO_REUSEADDR);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(reach == Reach::Everywhere ? INADDR_ANY : INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    socklen_t size = sizeof(address);
    if (::bind(listener.Get(), AsAddress(address), size) != 0 || ::listen(listener.Get(), 4) != 0
        || ::getsockname(listener.Get(), AsAddress(address), &size) != 0) {
        return "cannot listen on port " + std::to_string(port);
    }
    mListener = std::move(listener);
    mPort = ntohs(address.sin_port);
    return {};
}

bool SocketHost::Accept() {
    if (mHost.IsOpen()) return false;
    mHost = Descriptor(::accept4(mListener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (mHost.IsOpen()) SetOption(mHost.Get(), IPPROTO_TCP, TCP_NODELAY);
    return mHost.IsOpen();
}

void SocketHost::AddWaits(std::vector<pollfd>& waits, bool wantInput, bool wantOutput) const {
    if (!mHost.IsOpen()) {
        waits.push_back({mListener.Get(), POLLIN, 0});
        return;
    }
    const int events = (wantInput ? POLLIN : 0) | (wantOutput ? POLLOUT : 0);
    waits.push_back({mHost.Get(), static_cast<short>(events), 0});
}

std::string SocketHost::Read(std::size_t max) {
    bool closed = false;
    std::string bytes = ReadSome(mHost.Get(), max, closed);
    if (closed) mHost.Close();
    return bytes;
}

std::size_t SocketHost::Write(std::string_view bytes) {
    bool closed = false;
    const std::size_t count = WriteSome(mHost.Get(), bytes, closed);
    if (closed) mHost.Close();
    return count;
}

} // namespace qnsim

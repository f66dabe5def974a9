#include "endpoints/SocketHost.h"

#include "EndpointCalls.h"

#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace qnsim {
namespace {

/// The socket calls take the addresses of all protocols by one type.
sockaddr* AsAddress(sockaddr_in& address) {
    return static_cast<sockaddr*>(static_cast<void*>(&address));
}

void SetOption(int descriptor, int level, int option) {
    const int yes = 1;
    ::setsockopt(descriptor, level, option, &yes, sizeof(yes));
}

} // namespace

std::string SocketHost::Listen(int port, Reach reach) {
    qncomm::Fd listener(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!listener) return "cannot open a socket";
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
    mArrivals = WakeFor(mLoop, mListener.Get(), {.readable = true});
    mPort = ntohs(address.sin_port);
    return {};
}

bool SocketHost::Accept() {
    if (mHost) return false;
    mHost.Reset(::accept4(mListener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!mHost) return false;
    SetOption(mHost.Get(), IPPROTO_TCP, TCP_NODELAY);
    mTraffic = WakeFor(mLoop, mHost.Get(), {.readable = true});
    return true;
}

void SocketHost::HangUp() {
    mTraffic.reset();
    mHost.Reset();
}

void SocketHost::Want(bool input, bool output) {
    // While a host is there, the next one waits in the listener's queue and does not wake the loop.
    mArrivals->Want({.readable = !mHost});
    if (mTraffic) mTraffic->Want({.readable = input, .writable = output});
}

std::string SocketHost::Read(std::size_t max) {
    bool closed = false;
    std::string bytes = ReadSome(mHost.Get(), max, closed);
    if (closed) HangUp();
    return bytes;
}

std::size_t SocketHost::Write(std::string_view bytes) {
    // Without the flag, writing to a host that has left would end the program by SIGPIPE.
    const ssize_t count = ::send(mHost.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EAGAIN && errno != EINTR) HangUp();
    return 0;
}

} // namespace qnsim

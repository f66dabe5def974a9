#include "Sockets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace qncomm::testing {
namespace {

template <typename Address>
Fd Connected(int family, const Address& address) {
    Fd fd(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fd.Reset();
    return fd;
}

} // namespace

Fd ConnectToPath(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return Connected(AF_UNIX, address);
}

Fd ConnectToLoopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    Fd fd = Connected(AF_INET, address);
    const int on = 1;
    ::setsockopt(fd.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return fd;
}

} // namespace qncomm::testing

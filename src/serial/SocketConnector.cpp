#include "SocketConnector.h"

#include "platform/SystemErrors.h"

#include <array>
#include <cerrno>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <utility>

namespace qncomm {
namespace {

struct SocketOption {
    int level;
    int name;
    int value;
};

/// A byte leaves when it is written; a peer that vanished is noticed within half a minute.
constexpr std::array SocketOptions{
    SocketOption{IPPROTO_TCP, TCP_NODELAY, 1},   SocketOption{SOL_SOCKET, SO_KEEPALIVE, 1},
    SocketOption{IPPROTO_TCP, TCP_KEEPIDLE, 15}, SocketOption{IPPROTO_TCP, TCP_KEEPINTVL, 5},
    SocketOption{IPPROTO_TCP, TCP_KEEPCNT, 3},
};

} // namespace

SocketConnector::SocketConnector(Reactor& reactor, std::string sHost, std::string sService)
    : mReactor(reactor), mHost(std::move(sHost)), mService(std::move(sService)) {}

IoResult SocketConnector::Connect(Fd& fd) {
    const std::int64_t until = mReactor.NowUs() + LongestConnectUs;
    std::vector<SocketAddress> addresses = std::exchange(mAddresses, {});
    if (addresses.empty()) {
        IoResult result = LookUpHost(mReactor, mHost, mService, LongestConnectUs, addresses);
        if (!result.Ok()) return result;
    }
    IoResult result{IoStatus::Missing, 0, "the host has no address"};
    for (const SocketAddress& address : addresses) {
        result = ConnectTo(address, until, fd);
        if (!result.Ok()) continue;
        mAddresses = std::move(addresses);
        break;
    }
    return result;
}

IoResult SocketConnector::ConnectTo(const SocketAddress& address, std::int64_t until,
                                    Fd& fd) const {
    fd.Reset(::socket(address.bytes.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd) return OpenFailure(errno);
    for (const SocketOption& option : SocketOptions)
        ::setsockopt(fd.Get(), option.level, option.name, &option.value, sizeof option.value);
    int error = 0;
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address.bytes), address.length) != 0)
        error = errno;
    if (error == EINPROGRESS) {
        const FdEvents ready =
            mReactor.WaitFor(fd.Get(), {.writable = true}, until - mReactor.NowUs());
        socklen_t length = sizeof error;
        if (!ready.Any())
            error = ETIMEDOUT;
        else if (::getsockopt(fd.Get(), SOL_SOCKET, SO_ERROR, &error, &length) != 0)
            error = errno;
    }
    if (error == 0) return {};
    fd.Reset();
    IoResult result = OpenFailure(error);
    if (error == ECONNREFUSED) result.text = "nobody listens there (connection refused)";
    if (error == ETIMEDOUT) result.text = "the host does not answer";
    return result;
}

bool DrainSocket(int fd) {
    std::array<char, 4096> scratch{};
    for (;;) {
        const ssize_t count = ::recv(fd, scratch.data(), scratch.size(), MSG_DONTWAIT);
        if (count == 0) return false;
        if (count < 0) return errno == EAGAIN || errno == EWOULDBLOCK;
    }
}

bool HasUnsent(int fd) {
    int unsent = 0;
    return ::ioctl(fd, SIOCOUTQNSD, &unsent) == 0 && unsent > 0;
}

void CloseHard(int fd) {
    const linger now{1, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

} // namespace qncomm

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

/// Begins a connection: 0 when it is there at once, EINPROGRESS while it is not yet.
int Begin(const SocketAddress& address, Fd& fd) {
    fd.Reset(::socket(address.bytes.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd) return errno;
    for (const SocketOption& option : SocketOptions)
        ::setsockopt(fd.Get(), option.level, option.name, &option.value, sizeof option.value);
    const auto* const there = reinterpret_cast<const sockaddr*>(&address.bytes);
    return ::connect(fd.Get(), there, address.length) == 0 ? 0 : errno;
}

/// How a connection that was in progress has ended.
int ErrorOf(int fd) {
    int error = 0;
    socklen_t length = sizeof error;
    return ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) == 0 ? error : errno;
}

/// The same for whoever asked for it; a failed one is closed.
IoResult EndOf(int error, Fd& fd) {
    if (error == 0) return {};
    fd.Reset();
    IoResult result = OpenFailure(error);
    if (error == ECONNREFUSED) result.text = "nobody listens there (connection refused)";
    if (error == ETIMEDOUT) result.text = "the host does not answer";
    return result;
}

} // namespace

SocketConnector::SocketConnector(Reactor& reactor, std::string sHost, std::string sService)
    : mReactor(reactor),
      mHost(std::move(sHost)),
      mService(std::move(sService)),
      mReachDue(reactor.CreateAlarm([this] { OnReachDue(); })) {}

IoResult SocketConnector::Connect(Fd& fd) {
    mReachDue->Clear();
    Fd reached = std::exchange(mReaching, Fd());
    if (const auto result = std::exchange(mReached, std::nullopt)) {
        fd = std::move(reached);
        return *result;
    }
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
        mLast = address;
        mAddresses = std::move(addresses);
        break;
    }
    return result;
}

IoResult SocketConnector::ConnectTo(const SocketAddress& address, std::int64_t until,
                                    Fd& fd) const {
    int error = Begin(address, fd);
    if (error == EINPROGRESS) {
        const FdEvents ready =
            mReactor.WaitFor(fd.Get(), {.writable = true}, until - mReactor.NowUs());
        error = ready.Any() ? ErrorOf(fd.Get()) : ETIMEDOUT;
    }
    return EndOf(error, fd);
}

bool SocketConnector::Reach() {
    if (!mLast || mReached) return true;
    if (!mReaching) {
        mReachDue->SetDue(mReactor.NowUs() + LongestConnectUs);
        const int error = Begin(*mLast, mReaching);
        if (error != EINPROGRESS) Reached(error);
    }
    if (!mReached && mReactor.WaitFor(mReaching.Get(), {.writable = true}, 0).Any())
        Reached(ErrorOf(mReaching.Get()));
    return mReached.has_value();
}

void SocketConnector::Reached(int error) {
    mReached = EndOf(error, mReaching);
    mReachDue->SetDue(mReactor.NowUs() + TakeUs);
}

void SocketConnector::OnReachDue() {
    if (!mReached) {
        Reached(ETIMEDOUT);
        return;
    }
    mReached.reset();
    mReaching.Reset();
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

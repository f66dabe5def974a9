#include "SocketConnector.h"

#include "common/Wait.h"
#include "platform/SystemErrors.h"

#include <algorithm>
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
int BeginTo(const SocketAddress& address, Fd& fd) {
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

/// The same for whoever asked for it.
IoResult ResultOf(int error) {
    if (error == 0) return {};
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
      mDue(reactor.CreateAlarm([this] { OnDue(); })) {}

IoResult SocketConnector::Connect(Fd& fd) {
    Wait(mReactor, {.wholeMs = WaitBounds::Endless}) // it has a limit of its own
        .Until([this] { return Reach(); },
               [this](std::int32_t ms) { Sleep(std::int64_t{ms} * 1000); });
    mDue->Clear();
    mUnderWay = false;
    fd = std::exchange(mReaching, Fd());
    return std::exchange(mReached, std::nullopt).value_or(IoResult{});
}

bool SocketConnector::Reach() {
    if (!mUnderWay) Begin();
    GoOn();
    return mReached.has_value();
}

void SocketConnector::Sleep(std::int64_t lLimitUs) {
    mReactor.WaitFor(mAwaited, mAwaitedFor, std::min(lLimitUs, mUntilUs - mReactor.NowUs()));
}

void SocketConnector::Begin() {
    mUnderWay = true;
    mNext = 0;
    mLast = {IoStatus::Missing, 0, "the host has no address"};
    mUntilUs = mReactor.NowUs() + LongestConnectUs;
    mDue->SetDue(mUntilUs);
    if (!mAddresses.empty()) return;
    if (mLookup && mLookup->IsDone()) mLookup.reset(); // of another time
    if (!mLookup) mLookup.emplace(mHost, mService);
}

void SocketConnector::GoOn() {
    while (!mReached && (mLookup ? TakeAddresses() : TryNext())) {
    }
    if (!mReached && mReactor.NowUs() >= mUntilUs) GiveUp();
}

void SocketConnector::GiveUp() {
    mWatch.reset();
    mReaching.Reset();
    mAddresses.clear();
    Reached(mLookup ? IoResult{IoStatus::TimedOut, ETIMEDOUT,
                               "looking up the host's name took too long"}
                    : ResultOf(ETIMEDOUT));
}

/// False while there is no answer.
bool SocketConnector::TakeAddresses() {
    if (!mLookup->IsDone()) {
        Await(mLookup->Handle(), {.readable = true});
        return false;
    }
    mWatch.reset();
    IoResult result = mLookup->Take(mAddresses);
    mLookup.reset();
    if (!result.Ok()) Reached(std::move(result));
    return true;
}

/// Goes on with the address that is tried, or with the next one. False while it does not answer.
bool SocketConnector::TryNext() {
    if (!mReaching && mNext >= mAddresses.size()) {
        mAddresses.clear(); // the host may have moved
        Reached(std::move(mLast));
        return true;
    }
    int error = EINPROGRESS;
    if (!mReaching) error = BeginTo(mAddresses[mNext++], mReaching);
    if (error == EINPROGRESS) {
        if (!mReactor.WaitFor(mReaching.Get(), {.writable = true}, 0).Any()) {
            Await(mReaching.Get(), {.writable = true});
            return false;
        }
        error = ErrorOf(mReaching.Get());
    }
    mWatch.reset();
    mLast = ResultOf(error);
    if (error == 0)
        Reached({});
    else
        mReaching.Reset();
    return true;
}

void SocketConnector::Await(int fd, FdEvents events) {
    mAwaited = fd;
    mAwaitedFor = events;
    if (!mWatch) mWatch = mReactor.Watch(fd, events, [this](FdEvents) { GoOn(); });
}

void SocketConnector::Reached(IoResult result) {
    mReached = std::move(result);
    mDue->SetDue(mReactor.NowUs() + TakeUs);
}

/// It has taken too long, or nobody has taken what was reached.
void SocketConnector::OnDue() {
    if (!mReached) {
        GiveUp();
        return;
    }
    mReaching.Reset();
    mReached.reset();
    mUnderWay = false;
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

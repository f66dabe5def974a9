#include "Relay.h"

#include <algorithm>
#include <array>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace qncomm::testing {
namespace {

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

Fd TcpSocket() {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    ::setsockopt(fd.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return fd;
}

} // namespace

Relay::Relay(Reactor& loop, const std::string& printer)
    : mLoop(loop),
      mPrinterPort(
          static_cast<std::uint16_t>(std::stoi(printer.substr(printer.find_last_of(':') + 1)))),
      mListener(TcpSocket()) {
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    if (::bind(mListener.Get(), place, size) != 0 || ::listen(mListener.Get(), 1) != 0
        || ::getsockname(mListener.Get(), place, &size) != 0)
        throw std::runtime_error("no port for the relay");
    mPort = ntohs(address.sin_port);
    mComing = mLoop.Watch(mListener.Get(), {.readable = true}, [this](FdEvents) { Accept(); });
}

void Relay::After(std::size_t bytes, std::function<void()> action) {
    mLeft = bytes;
    mAction = std::move(action);
}

void Relay::Accept() {
    mFromAdapter.reset();
    mFromPrinter.reset();
    mAdapter.Reset(::accept4(mListener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    mPrinter = TcpSocket();
    const sockaddr_in address = Loopback(mPrinterPort);
    if (::connect(mPrinter.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("the printer is not there");
    mFromAdapter = mLoop.Watch(mAdapter.Get(), {.readable = true},
                               [this](FdEvents) { Pass(mAdapter, mPrinter); });
    mFromPrinter = mLoop.Watch(mPrinter.Get(), {.readable = true},
                               [this](FdEvents) { Pass(mPrinter, mAdapter); });
}

void Relay::Pass(const Fd& from, const Fd& to) {
    std::array<char, 256> bytes{};
    const ssize_t got = ::read(from.Get(), bytes.data(), bytes.size());
    if (got <= 0) { // a side that hung up is not watched any more
        (&from == &mAdapter ? mFromAdapter : mFromPrinter)->Want({});
        return;
    }
    const auto count = static_cast<std::size_t>(got);
    if (::send(to.Get(), bytes.data(), count, MSG_NOSIGNAL) < 0) return;
    mLeft -= std::min(mLeft, count);
    if (mLeft == 0 && mAction) std::exchange(mAction, nullptr)();
}

} // namespace qncomm::testing

#include "Relay.h"

#include "Sockets.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {

Relay::Relay(Reactor& loop, const std::string& adapter, const std::string& printer)
    : mAdapter(ConnectToPath(adapter)),
      mPrinter(ConnectToLoopback(
          static_cast<std::uint16_t>(std::stoi(printer.substr(printer.find_last_of(':') + 1))))),
      mFromAdapter(loop.Watch(mAdapter.Get(), {.readable = true},
                              [this](FdEvents) { Pass(mAdapter, mPrinter); })),
      mFromPrinter(loop.Watch(mPrinter.Get(), {.readable = true},
                              [this](FdEvents) { Pass(mPrinter, mAdapter); })) {}

void Relay::PullOut() {
    mFromAdapter.reset();
    mFromPrinter.reset();
    mAdapter.Reset();
    mPrinter.Reset();
}

void Relay::Pass(const Fd& from, const Fd& to) {
    std::array<char, 256> bytes{};
    const ssize_t got = ::read(from.Get(), bytes.data(), std::min(bytes.size(), mLeft));
    if (got > 0 && ::send(to.Get(), bytes.data(), static_cast<std::size_t>(got), MSG_NOSIGNAL) > 0)
        mLeft -= static_cast<std::size_t>(got);
    if (got <= 0 || mLeft == 0) PullOut();
}

} // namespace qncomm::testing

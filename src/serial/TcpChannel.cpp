#include "TcpChannel.h"

#include "SocketPlace.h"

#include <sys/socket.h>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view TcpScheme = "tcp://";

} // namespace

constinit const ChannelKind TcpKind{
    .scheme = TcpScheme,
    .form = "tcp://host:port",
    .check = [](std::string_view address) -> std::string {
        if (ParseSocketPlace(address, TcpScheme)) return {};
        return "a socket is written tcp://host:port, with a port of 1 to 65535 and an IPv6 number "
               "in brackets";
    },
    .make = [](std::string_view address, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        auto [host, service] = ParseSocketPlace(address, TcpScheme).value();
        return std::make_unique<TcpChannel>(reactor, std::move(host), std::move(service));
    },
    .look = [](std::string_view /*address*/) -> PortStatus {
        return {PortState::Unchecked, {}};
    },
};

TcpChannel::TcpChannel(Reactor& reactor, std::string sHost, std::string sService)
    : FdChannel(reactor, "the other side closed the connection"),
      mConnector(reactor, std::move(sHost), std::move(sService)),
      mParkEnd(reactor.CreateAlarm([this] { mParked.Reset(); })) {}

TcpChannel::~TcpChannel() {
    Close();
}

IoResult TcpChannel::Open(const LineSettings& /*settings*/) {
    mParkEnd->Clear();
    Fd fd = std::move(mParked);
    if (fd && !DrainSocket(fd.Get())) fd.Reset();
    if (!fd) {
        if (IoResult result = mConnector.Connect(fd); !result.Ok()) return result;
    }
    Attach(std::move(fd));
    return {};
}

void TcpChannel::Close() {
    Fd fd = Detach();
    if (!fd) return;
    if (HasUnsent(fd.Get())) {
        CloseHard(fd.Get());
        return;
    }
    if (!DrainSocket(fd.Get())) return;
    mParked = std::move(fd);
    mParkEnd->SetDue(Loop().NowUs() + ParkUs);
}

IoResult TcpChannel::Probe() {
    if (Handle() >= 0) return {};
    IoResult result = Open({});
    Close();
    return result;
}

IoResult TcpChannel::Configure(const LineSettings& /*settings*/) {
    return {};
}

void TcpChannel::DiscardInput() {
    DrainSocket(Handle());
} // a loss shows on the next read

ssize_t TcpChannel::Put(std::string_view bytes) {
    return ::send(Handle(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

} // namespace qncomm

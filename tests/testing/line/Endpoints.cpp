#include "serial_testing/ScriptedChannel.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/Endpoint.h"
#include "testing/line/PtyPair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr std::int64_t PatienceMs = 20'000;

/// The far side's end of a descriptor.
void PumpFd(int fd, bool deaf, std::string& toHost, std::string& fromHost) {
    if (fd < 0) return;
    std::array<char, 4096> scratch{};
    for (ssize_t count = 1; !deaf && count > 0;) {
        count = ::read(fd, scratch.data(), scratch.size());
        if (count > 0) fromHost.append(scratch.data(), static_cast<std::size_t>(count));
    }
    while (!toHost.empty()) {
        const ssize_t count = ::write(fd, toHost.data(), std::min<std::size_t>(toHost.size(), 512));
        if (count <= 0) return;
        toHost.erase(0, static_cast<std::size_t>(count));
    }
}

class FakeEndpoint final : public Endpoint {
  public:
    std::string Address() const override { return "/dev/fake"; }
    ChannelFactory Factory() override {
        return [this](const PortAddress&, Reactor& reactor) {
            auto channel = std::make_unique<ScriptedChannel>(reactor, mLine);
            mChannel = channel.get();
            return channel;
        };
    }
    void Pump() override {
        mLine.takes = deaf ? 0 : 1000;
        mFromHost += std::exchange(mLine.written, {});
        if (mChannel == nullptr) return;
        if (!mToHost.empty()) mChannel->Arrive(std::exchange(mToHost, {}));
        mChannel->Changed();
    }
    void Unplug() override {
        mLine.loss = IoResult{IoStatus::Lost, 0, "the device went away"};
        mChannel->Changed();
    }
    void PlugIn() override { mLine.loss.reset(); }

  private:
    ScriptedLine mLine;
    ScriptedChannel* mChannel = nullptr;
};

/// A pty behind a link of its own, so that another one can take its place.
class PtyEndpoint final : public Endpoint {
  public:
    PtyEndpoint() { PlugIn(); }
    std::string Address() const override { return mFolder.File("tty"); }
    void Pump() override { PumpFd(mPty.master.Get(), deaf, mToHost, mFromHost); }
    void Unplug() override {
        std::filesystem::remove(Address());
        mPty.master.Reset();
    }
    void PlugIn() override {
        mPty = OpenPty();
        std::filesystem::create_symlink(mPty.path, Address());
    }

  private:
    ScratchFolder mFolder;
    PtyPair mPty;
};

class TcpEndpoint final : public Endpoint {
  public:
    TcpEndpoint() { PlugIn(); }
    std::string Address() const override { return "tcp://127.0.0.1:" + std::to_string(mPort); }
    void Pump() override {
        Fd next(::accept4(mListener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (next) mPeer = std::move(next);
        PumpFd(mPeer.Get(), deaf, mToHost, mFromHost);
    }
    void Unplug() override {
        Pump();
        const linger reset{1, 0};
        ::setsockopt(mPeer.Get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        mPeer.Reset();
        mListener.Reset();
    }
    void PlugIn() override {
        mListener.Reset(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        const int one = 1;
        ::setsockopt(mListener.Get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(mPort);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(mListener.Get(), reinterpret_cast<sockaddr*>(&address), length) != 0
            || ::listen(mListener.Get(), 4) != 0
            || ::getsockname(mListener.Get(), reinterpret_cast<sockaddr*>(&address), &length) != 0)
            throw std::runtime_error("no listening socket");
        mPort = ntohs(address.sin_port);
    }

  private:
    std::uint16_t mPort = 0;
    Fd mListener;
    Fd mPeer;
};

} // namespace

std::unique_ptr<Endpoint> MakeFakeEndpoint() {
    return std::make_unique<FakeEndpoint>();
}
std::unique_ptr<Endpoint> MakePtyEndpoint() {
    return std::make_unique<PtyEndpoint>();
}
std::unique_ptr<Endpoint> MakeTcpEndpoint() {
    return std::make_unique<TcpEndpoint>();
}

bool Until(Reactor& reactor, Endpoint* endpoint, const std::function<bool()>& condition) {
    const std::int64_t limit = reactor.NowMs() + PatienceMs;
    while (!condition()) {
        if (reactor.NowMs() > limit) return false;
        if (endpoint != nullptr) endpoint->Pump();
        reactor.Yield(2);
    }
    return true;
}

} // namespace qncomm::testing

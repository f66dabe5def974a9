#include "FarSide.h"

#include "serial_testing/ScriptedChannel.h"
#include "testing/core/OwnMachine.h"

#include <stdexcept>
#include <sys/eventfd.h>
#include <utility>

namespace qncomm::testing {
namespace {

struct OwnLine {
    ScriptedLine line;
};

/// A channel to a device inside this program.
class DeviceChannel final : private OwnLine, public ScriptedChannel {
  public:
    DeviceChannel(Reactor& reactor, Device device)
        : ScriptedChannel(reactor, line), mDevice(std::move(device)) {
        line.dsr = mDevice.dsr;
    }

    IoResult Open(const LineSettings& settings) override {
        IoResult opened = ScriptedChannel::Open(settings);
        constexpr std::int64_t longestMs = 20'000;
        for (std::int64_t ms = mDevice.everyMs; !mDevice.talk.empty() && ms < longestMs;
             ms += mDevice.everyMs)
            Arrive(mDevice.talk, ms * 1000);
        return opened;
    }
    IoCount Write(std::string_view bytes) override {
        const IoCount written = ScriptedChannel::Write(bytes);
        if (mDevice.answer) Arrive(mDevice.answer(bytes), 1000);
        return written;
    }

  private:
    Device mDevice;
};

} // namespace

ChannelFactory ChannelsTo(const Device& device) {
    return [device](const PortAddress&, Reactor& reactor) {
        return std::make_unique<DeviceChannel>(reactor, device);
    };
}

ServedDevice::ServedDevice(Device device, const Open& open)
    : mDevice(std::move(device)), mStop(::eventfd(0, EFD_CLOEXEC)) {
    qnsim::OpenedEndpoint opened = open(mLoop);
    mEndpoint = std::move(opened.endpoint);
    if (!mEndpoint) throw std::runtime_error(opened.error);
    mAddress = mEndpoint->Address();
    mThread = std::thread([this] { Serve(); });
}

ServedDevice::~ServedDevice() {
    ::eventfd_write(mStop.Get(), 1);
    mThread.join();
}

void ServedDevice::Serve() {
    MakeMachineOfItsOwn();
    const auto stop =
        mLoop.Watch(mStop.Get(), {.readable = true}, [this](FdEvents) { mStopped = true; });
    std::string output;
    std::int64_t talked = mLoop.NowMs();
    constexpr std::int32_t turnMs = 5;
    while (!mStopped) {
        mEndpoint->Want(true, !output.empty());
        mLoop.Yield(turnMs);
        mEndpoint->Refresh();
        mEndpoint->ShowLines(mDevice.dsr.value_or(true), true);
        for (const qnsim::HostAction& action : mEndpoint->Receive(4096))
            if (action.kind == qnsim::HostAction::Kind::Bytes && mDevice.answer)
                output += mDevice.answer(action.text);
        if (!mDevice.talk.empty() && mLoop.NowMs() - talked >= mDevice.everyMs) {
            talked = mLoop.NowMs();
            output += mDevice.talk;
        }
        if (!mEndpoint->Connected()) output.clear();
        if (!output.empty()) output.erase(0, mEndpoint->Write(output));
    }
    mEndpoint.reset();
}

} // namespace qncomm::testing

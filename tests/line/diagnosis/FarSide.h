#pragma once

#include "endpoints/Endpoint.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "serial/PortAddress.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace qncomm::testing {

/// A device that is no printer, as far as a host sees it. Answer is called on another thread.
struct Device {
    std::function<std::string(std::string_view bytes)> answer = {}; ///< empty: it is deaf
    std::string talk = {};                                          ///< what it says by itself
    std::int64_t everyMs = 200;                                     ///< how often
    std::optional<bool> dsr = {}; ///< held or not, where the line has it
};

/// Makes channels inside this program that lead to the device.
ChannelFactory ChannelsTo(const Device& device);

/// Serves the device at an endpoint, on a thread, for as long as it lives.
class ServedDevice {
  public:
    using Open = std::function<qnsim::OpenedEndpoint(Reactor&)>;

    ServedDevice(Device device, const Open& open);
    ~ServedDevice();
    ServedDevice(const ServedDevice&) = delete;
    ServedDevice& operator=(const ServedDevice&) = delete;

    /// As the endpoint has it: a path, or host and port.
    std::string Address() const { return mAddress; }

  private:
    void Serve();

    Device mDevice;
    Fd mStop;
    PollLoop mLoop;
    std::unique_ptr<qnsim::Endpoint> mEndpoint;
    std::string mAddress;
    bool mStopped = false;
    std::thread mThread;
};

} // namespace qncomm::testing

#pragma once

#include "Relay.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"

#include <memory>
#include <string>

namespace qncomm::testing {

/// The serial number of the guest's USB adapter.
inline constexpr const char* AdapterSerial = "QN4711";

/// A machine of its own, under qemu: a Linux kernel with real drivers on a 16550 (/dev/ttyS1) and,
/// when it is plugged in, a USB adapter (/dev/ttyUSB0). Boots when it is made, in ten to thirty
/// seconds; everything waits with a limit that only a hang reaches.
class Guest {
  public:
    /// How a command in the guest ended.
    struct Ended {
        int status = -1;  ///< its exit status
        std::string text; ///< its output and its messages
    };

    /// Raises std::runtime_error when the guest does not come up.
    Guest();

    /// Runs a shell command in the guest. The loop goes on turning meanwhile.
    Ended Run(const std::string& command);

    /// The 16550's line is the tty of this machine from now on: rate and stop bits reach it.
    void ConnectUart(const std::string& tty);
    /// The other side holds the UART's line in the break condition for a moment.
    void BreakUart();

    /// Plugs the adapter in, with a printer such as tcp://127.0.0.1:5000 at its other end, and
    /// waits for its device. The wire pulls it out, at the latest when it goes.
    std::unique_ptr<Relay> PlugIn(const std::string& printer,
                                  const std::string& device = "/dev/ttyUSB0");

    /// What the machine's devices were set to so far, as qemu traced it, a line each.
    std::string DeviceTrace() const { return mFolder.Read("trace"); }

  private:
    void Order(const std::string& command, const std::string& arguments);
    void Send(const Fd& fd, const std::string& text) const;
    /// The next line of the stream; what came behind it stays in rest.
    std::string NextLine(const Fd& fd, std::string& rest);
    /// Ends the machine and tells what it said; for a failure's text.
    std::string LastWords();

    ScratchFolder mFolder;
    PollLoop mLoop;
    std::unique_ptr<Program> mMachine;
    Fd mCommands;
    Fd mOrders;
    std::string mCommandRest;
    std::string mOrderRest;
};

} // namespace qncomm::testing

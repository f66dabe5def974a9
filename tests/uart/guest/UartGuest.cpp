// Runs inside the guest: the serial control on a real UART, and what the UART itself says of it.
//
//   uart_guest registers DEVICE BASE
//       every rate and format, with the registers of the 16550 at that I/O port
//   uart_guest settings DEVICE
//       every rate and format, of an adapter without such registers
//   uart_guest break DEVICE
//       holds the line in the break condition and lets it go
//   uart_guest counts DEVICE
//       what the driver has counted since the start

#include "common/QNError.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "serial/LineSettings.h"
#include "serial/PDQComm.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <linux/serial.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace {

/// The registers of a 16550, read behind its driver's back while nothing travels.
class Registers {
  public:
    explicit Registers(off_t base) : mBase(base), mPorts(::open("/dev/port", O_RDWR | O_CLOEXEC)) {}

    std::string Text() {
        constexpr off_t lineControl = 3;
        constexpr unsigned char divisorLatch = 0x80;
        const unsigned char line = In(lineControl);
        Out(lineControl, line | divisorLatch);
        const int divisor = In(0) + 256 * In(1);
        Out(lineControl, line);
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "lcr=%02x divisor=%d", line, divisor);
        return text.data();
    }

  private:
    unsigned char In(off_t offset) {
        unsigned char value = 0;
        if (::pread(mPorts.Get(), &value, 1, mBase + offset) != 1)
            throw std::runtime_error("cannot read an I/O port");
        return value;
    }
    void Out(off_t offset, unsigned char value) {
        if (::pwrite(mPorts.Get(), &value, 1, mBase + offset) != 1)
            throw std::runtime_error("cannot write an I/O port");
    }

    off_t mBase;
    qncomm::Fd mPorts;
};

class Port {
  public:
    explicit Port(const std::string& device) {
        const std::string refused = mControl.Bindings().Give(1, device);
        if (!refused.empty()) throw std::runtime_error(refused);
        mControl.SetPortNumber(1);
    }
    qncomm::PDQComm& operator*() { return mControl; }
    qncomm::PDQComm* operator->() { return &mControl; }

  private:
    qncomm::PollLoop mLoop;
    qncomm::PDQComm mControl{mLoop, {}};
};

/// Sets everything that can be set, on the open port, and prints what happened.
void TryAll(const std::string& device, const std::function<std::string()>& seen) {
    Port port(device);
    port->SetPortOpen(true);
    for (const int baud : qncomm::BaudRates)
        for (const char parity : std::string("NEOMS"))
            for (const char bits : std::string("78"))
                for (const char stop : std::string("12")) {
                    const std::string text =
                        std::to_string(baud) + ',' + parity + ',' + bits + ',' + stop;
                    try {
                        port->SetPortSettings(text);
                        std::cout << text << ' ' << seen() << '\n';
                    } catch (const qncomm::QNError& error) {
                        std::cout << text << " refused: " << error.Description() << '\n';
                    }
                }
}

void HoldBreak(const std::string& device) {
    Port port(device);
    port->SetPortOpen(true);
    for (const bool on : {true, false})
        if (const qncomm::IoResult done = port->SetBreak(on); !done.Ok())
            throw std::runtime_error(done.text);
}

void ShowCounts(const std::string& device) {
    const qncomm::Fd fd(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    serial_icounter_struct counts{};
    if (::ioctl(fd.Get(), TIOCGICOUNT, &counts) != 0)
        throw std::runtime_error("the driver counts nothing");
    std::cout << "rx=" << counts.rx << " tx=" << counts.tx << " frame=" << counts.frame
              << " parity=" << counts.parity << " overrun=" << counts.overrun
              << " break=" << counts.brk << '\n';
}

int Run(const std::vector<std::string>& words) {
    if (words.size() == 3 && words[0] == "registers") {
        Registers registers(static_cast<off_t>(std::stoul(words[2], nullptr, 0)));
        TryAll(words[1], [&] { return registers.Text(); });
    } else if (words.size() == 2 && words[0] == "settings") {
        TryAll(words[1], [] { return "taken"; });
    } else if (words.size() == 2 && words[0] == "break") {
        HoldBreak(words[1]);
    } else if (words.size() == 2 && words[0] == "counts") {
        ShowCounts(words[1]);
    } else {
        std::cerr << "usage: uart_guest registers DEVICE BASE | settings DEVICE | break DEVICE | "
                     "counts DEVICE\n";
        return 2;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "uart_guest: " << error.what() << '\n';
        return 1;
    }
}

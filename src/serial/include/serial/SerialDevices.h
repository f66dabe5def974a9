#pragma once

#include <string>
#include <vector>

namespace qncomm {

/// A serial device of this machine.
struct SerialDevice {
    std::string path;        ///< /dev/ttyUSB0
    std::string description; ///< what it calls itself, such as "FT232R USB UART"; may be empty
};

/// Where the system tells about its devices; a test gives folders of its own.
struct DeviceFolders {
    std::string tty =
        "/sys/class/tty";     ///< an entry for each tty, with a folder "device" of hardware
    std::string dev = "/dev"; ///< where the devices themselves are
};

/// The serial devices of this machine that have hardware behind them, in a stable order: ttyUSB,
/// ttyACM, ttyS and the others, each by number.
std::vector<SerialDevice> FindSerialDevices(const DeviceFolders& folders = {});

} // namespace qncomm

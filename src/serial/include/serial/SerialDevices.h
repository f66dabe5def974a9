#pragma once

#include <optional>
#include <string>
#include <vector>

namespace qncomm {

/// A serial device of this machine.
struct SerialDevice {
    std::string path;        ///< /dev/ttyUSB0
    std::string description; ///< what it calls itself, such as "FT232R USB UART"; may be empty
};

/// The USB adapter behind a serial device, as it tells about itself; any text may be empty.
struct UsbAdapter {
    std::string vendorId;  ///< four hex digits, such as "0403"
    std::string productId; ///< four hex digits, such as "6001"
    std::string maker;     ///< such as "FTDI"
    std::string product;   ///< such as "FT232R USB UART"
    std::string serial;    ///< tells two adapters of one product apart
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

/// The USB adapter of the device of that name, such as "ttyUSB0", or nothing where none is behind
/// it.
std::optional<UsbAdapter> FindUsbAdapter(const std::string& sName,
                                         const DeviceFolders& folders = {});

/// Where the USB adapter with that serial number is now, such as "/dev/ttyUSB1"; empty where none
/// is plugged in, and for an empty number.
std::string FindUsbDevice(const std::string& sSerial, const DeviceFolders& folders = {});

/// The device of this machine that an address stands for now, such as "/dev/ttyUSB1" for
/// "usb:A50285BI"; empty for an address of another kind, and for an adapter that is not there.
std::string DevicePathOf(const std::string& sAddress);

} // namespace qncomm

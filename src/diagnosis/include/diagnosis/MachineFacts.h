#pragma once

#include "serial/PortHolder.h"
#include "serial/SerialDevices.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Whether this user may open a device, judged by its owner, its group and its mode. An access list
/// may grant more, which only opening tells.
enum class DeviceAccess {
    Granted,       ///< it may
    NotInGroup,    ///< the device's group may, and this user is none of it
    NotYetInGroup, ///< the user was added to the group after this session began
    NobodyOfGroup, ///< the group may not either
};

/// A running service that takes serial ports, or types on them.
struct PortService {
    std::string name;  ///< of its process
    std::string does;  ///< as the end of a sentence that begins with its name
    std::string cure;  ///< the command that ends it
    bool owns = false; ///< it has this very port
};

/// What this machine tells of one of its devices. Plain values: what judges them can be given any.
struct MachineFacts {
    std::string path; ///< the device as it was named; empty for a port that is none of this machine
    std::string name; ///< behind all links, such as "ttyUSB0" or "pts/4"
    bool exists = false;                              ///< there is such a device
    DeviceAccess access = DeviceAccess::Granted;      ///< whether this user may open it
    std::string user;                                 ///< this user's name, or number
    std::string group;                                ///< the device's group, or its number
    PortUsers users;                                  ///< who else uses it
    std::vector<PortService> services;                ///< that run, and concern such a device
    bool servicesSeen = true;                         ///< false: not all processes can be seen
    std::optional<UsbAdapter> adapter;                ///< nothing where no USB device is behind it
    std::optional<std::vector<std::string>> messages; ///< the kernel's last ones about it; nothing
                                                      ///< when this user may not read them
    std::vector<SerialDevice> devices;                ///< all serial devices of this machine
};

/// Looks at a device of this machine; changes and opens nothing. sRoot stands before /proc, /sys,
/// /dev and /etc: a test gives a folder that stages them.
MachineFacts ReadMachine(const std::string& sPath, const std::string& sRoot = {});

/// Whether a message of the kernel tells that the device went away.
bool TellsOfLoss(std::string_view sMessage);

} // namespace qncomm

#pragma once

#include "platform/Fd.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace qncomm {

/// A process that uses a device.
struct PortHolder {
    pid_t process = 0;  ///< its number; 0: the system does not tell
    std::string name;   ///< what the system calls it; may be empty
    bool locks = false; ///< it has locked the device, so that no other program opens it

    /// "held by minicom (process 1234)", "held by another program".
    std::string Text() const;
};

/// The processes that use a device, as far as they can be seen.
struct PortUsers {
    std::vector<PortHolder> found; ///< without this process; the one with the lock first
    bool everyoneSeen = true; ///< false: other users' processes do not let this user look at them
};

/// All other processes that use the device. sProc is where the system tells about its processes; a
/// test gives a folder of its own.
PortUsers FindPortUsers(const std::string& sPath, const std::string& sProc = "/proc");

/// The process that holds the lock of the device that fd is, or else one that has it open. This
/// process itself is named only when no other is found.
PortHolder FindPortHolder(int fd);
/// The same of the device of that name.
PortHolder FindPortHolder(const std::string& sPath);

/// A living process that wrote a lock file for the device, as serial programs have done since UUCP;
/// process 0 when there is none.
PortHolder FindLockFileOwner(const std::string& sPath, const std::string& sFolder = "/var/lock");

/// Marks a device as this program's, whether it has it open or not: a search closes and opens its
/// port many times, and nobody of this system is to come in between. The mark goes with the
/// descriptor, a killed program's too. Empty when another holds the mark.
Fd ReservePort(const std::string& sPath);
/// Who has marked the device so, this program included; nothing when nobody has.
std::optional<PortHolder> FindReserver(const std::string& sPath);

} // namespace qncomm

#pragma once

#include "platform/Fd.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace qncomm {

/// A process that uses a device.
struct PortHolder {
    pid_t process = 0; ///< 0: the system does not tell
    std::string name;

    /// "held by minicom (process 1234)", "held by another program".
    std::string Text() const;
};

/// The process that holds the lock of the device that fd is, or else one that has it open. This
/// process itself is named only when no other is found.
PortHolder FindPortHolder(int fd);
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

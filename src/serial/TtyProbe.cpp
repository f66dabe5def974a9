#include "TtyProbe.h"

#include "platform/SystemErrors.h"
#include "serial/PortHolder.h"

#include <cerrno>
#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace qncomm {
namespace {

IoResult Busy(const PortHolder& holder, int error) {
    return {IoStatus::Busy, error, holder.Text()};
}

/// Who may open the device, for a person who may not.
std::string GroupHint(const std::string& path) {
    struct stat device {};
    if (::stat(path.c_str(), &device) != 0 || (device.st_mode & S_IWGRP) == 0) return {};
    const group* const owner = ::getgrgid(device.st_gid);
    if (owner == nullptr) return {};
    return ": members of the group " + std::string(owner->gr_name) + " may open it";
}

IoResult OpenError(const std::string& path, int error) {
    if (error == EBUSY) return Busy(FindPortHolder(path), error);
    IoResult result = OpenFailure(error);
    if (result.status == IoStatus::Missing) result.text = "there is no such device";
    if (result.status == IoStatus::Denied) result.text += GroupHint(path);
    return result;
}

/// What a node that opens and has no attributes is: a place for a UART that is not fitted, or no
/// serial device at all.
IoResult NoLine(int error) {
    if (error == EIO) return {IoStatus::Missing, error, "there is no hardware behind this device"};
    return {IoStatus::Unsupported, error, "this is no serial device"};
}

/// Whether another program asked for exclusive use: only root gets so far as to ask.
bool IsExclusive(int fd) {
    int exclusive = 0;
    return ::ioctl(fd, TIOCGEXCL, &exclusive) == 0 && exclusive != 0;
}

} // namespace

IoResult ClaimTty(const std::string& sPath, Fd& fd, bool bReserved) {
    if (const auto reserver = bReserved ? std::nullopt : FindReserver(sPath))
        return Busy(*reserver, 0);
    const PortHolder owner = FindLockFileOwner(sPath);
    if (owner.process != 0) return Busy(owner, 0);
    fd.Reset(::open(sPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!fd) return OpenError(sPath, errno);
    termios line{};
    if (::tcgetattr(fd.Get(), &line) != 0) return NoLine(errno);
    if (::flock(fd.Get(), LOCK_EX | LOCK_NB) != 0) return Busy(FindPortHolder(fd.Get()), errno);
    if (IsExclusive(fd.Get())) {
        const PortHolder holder = FindPortHolder(sPath);
        // A flag that nobody is behind was left by a program that died.
        if (holder.process != 0 && holder.process != ::getpid()) return Busy(holder, EBUSY);
    }
    return {};
}

IoResult ProbeTty(const std::string& sPath, bool bReserved) {
    Fd fd;
    return ClaimTty(sPath, fd, bReserved);
}

} // namespace qncomm

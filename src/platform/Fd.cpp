#include "platform/Fd.h"

#include "platform/FdWait.h"

#include <cerrno>

#include <unistd.h>

namespace qncomm {
namespace {

constexpr std::int64_t PatienceUs = 5'000'000; ///< with a reader that takes nothing

} // namespace

void Fd::Reset(int fd) {
    if (mFd >= 0) ::close(mFd); // the descriptor is gone whatever close reports
    mFd = fd;
}

int WriteAll(int fd, std::string_view sBytes) {
    while (!sBytes.empty()) {
        const ssize_t written = ::write(fd, sBytes.data(), sBytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            if (!WaitForFd(fd, {.writable = true}, PatienceUs).Any()) return ETIMEDOUT;
            continue;
        }
        if (written <= 0) return written < 0 ? errno : EIO;
        sBytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace qncomm

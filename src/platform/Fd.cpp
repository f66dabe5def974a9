#include "platform/Fd.h"

#include <cerrno>

#include <unistd.h>

namespace qncomm {

void Fd::Reset(int fd) {
    if (mFd >= 0) ::close(mFd); // the descriptor is gone whatever close reports
    mFd = fd;
}

int WriteAll(int fd, std::string_view sBytes) {
    while (!sBytes.empty()) {
        const ssize_t written = ::write(fd, sBytes.data(), sBytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        sBytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace qncomm

#include "platform/Fd.h"

#include <unistd.h>

namespace qncomm {

void Fd::Reset(int fd) {
    if (mFd >= 0) ::close(mFd); // the descriptor is gone whatever close reports
    mFd = fd;
}

} // namespace qncomm

#include "testing/line/PtyPair.h"

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>

namespace qncomm::testing {

PtyPair OpenPty() {
    PtyPair pair;
    pair.master.Reset(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    const int fd = pair.master.Get();
    std::string path(64, '\0');
    if (fd < 0 || ::grantpt(fd) != 0 || ::unlockpt(fd) != 0
        || ::ptsname_r(fd, path.data(), path.size()) != 0)
        throw std::runtime_error("no pseudo-terminal");
    pair.path = path.c_str();
    return pair;
}

} // namespace qncomm::testing

#include "PtyPair.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <system_error>

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

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "qncomm-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    mPath = name;
}

TempFolder::~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

} // namespace qncomm::testing

#include "SettingsFile.h"

#include "common/HostPath.h"
#include "common/Wait.h"
#include "platform/FdWait.h"
#include "platform/FileOpening.h"
#include "platform/Interrupt.h"
#include "platform/SystemErrors.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

IoResult Failed(const std::string& path) {
    return FileFailure(errno, path);
}

} // namespace

IoResult MakeFoldersFor(const std::string& sPath) {
    std::filesystem::path made;
    for (const auto& part : std::filesystem::path(FolderOf(sPath))) {
        made /= part;
        if (::mkdir(made.c_str(), 0700) != 0 && errno != EEXIST) {
            struct ::stat there {};
            if (::stat(made.c_str(), &there) != 0) return Failed(made.string());
        }
    }
    return {};
}

IoResult MoveAside(const std::string& sPath, std::string& sNewPath) {
    for (int n = 1; n < 10000; ++n) {
        sNewPath = sPath + ".damaged-" + std::to_string(n);
        if (::renameat2(AT_FDCWD, sPath.c_str(), AT_FDCWD, sNewPath.c_str(), RENAME_NOREPLACE) == 0)
            return {};
        if (errno != EEXIST) break;
    }
    return Failed(sPath);
}

FileLock::FileLock(const std::string& sPath, std::int32_t lTimeout, const Interrupt* interrupt) {
    const std::string path = sPath + ".lock";
    mResult = OpenToWrite(path, FileStart::Kept, {}, 0600, mFile);
    if (!mResult.Ok()) return;
    constexpr std::int32_t step = 5; // ms; a holder writes one small file
    const SystemClock clock;
    int error = 0;
    bool cancelled = false;
    const auto isOver = [&] {
        error = ::flock(mFile.Get(), LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
        return cancelled || (error != EWOULDBLOCK && error != EINTR);
    };
    const auto sleep = [&](std::int32_t ms) {
        const int signals = interrupt != nullptr ? interrupt->Handle() : -1;
        cancelled = WaitForFd(signals, {.readable = true}, std::int64_t{ms} * 1000).readable;
    };
    Wait wait(clock, {.wholeMs = lTimeout, .stepMs = step});
    wait.Until(isOver, sleep);
    if (error == 0) return;
    mResult = FileFailure(cancelled ? ECANCELED : error, path);
    if (error == EWOULDBLOCK && !cancelled)
        mResult.text = path + ": another program holds the lock";
}

} // namespace qncomm

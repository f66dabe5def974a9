#include "SettingsFile.h"

#include "common/HostPath.h"
#include "platform/DurableFile.h"
#include "platform/SystemErrors.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
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

IoResult ReadWholeFile(const std::string& sPath, std::string& sText) {
    sText.clear();
    const Fd file(::open(sPath.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) return errno == ENOENT ? IoResult{} : Failed(sPath);
    std::array<char, 16384> part; // NOLINT(*-member-init): filled by read
    for (;;) {
        const ssize_t got = ::read(file.Get(), part.data(), part.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Failed(sPath);
        if (got == 0) return {};
        sText.append(part.data(), static_cast<std::size_t>(got));
    }
}

IoResult ReplaceSettings(const std::string& sPath, std::string_view sText) {
    DurableFile file;
    IoResult result = file.Open(sPath, sPath + ".new");
    if (result.Ok()) result = file.Clear();
    if (result.Ok()) result = file.Append(sText);
    if (result.Ok()) result = file.Commit(FileMode::Private);
    return result;
}

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

FileLock::FileLock(const std::string& sPath, std::int32_t lTimeout) {
    const std::string path = sPath + ".lock";
    mFile.Reset(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!mFile) {
        mResult = Failed(path);
        return;
    }
    constexpr std::int32_t step = 5; // ms; a holder writes one small file
    for (std::int32_t waited = 0; ::flock(mFile.Get(), LOCK_EX | LOCK_NB) != 0; waited += step) {
        const bool held = errno == EWOULDBLOCK;
        if (waited >= lTimeout || (!held && errno != EINTR)) {
            mResult = Failed(path);
            if (held) mResult.text = path + ": another program holds the lock";
            return;
        }
        const timespec pause{0, step * 1'000'000L};
        ::nanosleep(&pause, nullptr);
    }
}

} // namespace qncomm

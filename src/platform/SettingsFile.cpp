#include "SettingsFile.h"

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

/// An open file that closes itself.
class OpenFile {
  public:
    OpenFile(const std::string& path, int flags, mode_t mode = 0)
        : mFd(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    ~OpenFile() {
        if (mFd >= 0) ::close(mFd);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int Get() const { return mFd; }
    bool IsOpen() const { return mFd >= 0; }

  private:
    int mFd;
};

std::string FolderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

bool WriteAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

FileResult Failed(const std::string& path) {
    return {errno != 0 ? errno : EIO, path};
}

FileResult WriteNewFile(const std::string& path, std::string_view text) {
    const OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    if (!file.IsOpen() || !WriteAll(file.Get(), text) || ::fsync(file.Get()) != 0)
        return Failed(path);
    return {};
}

} // namespace

FileResult ReadWholeFile(const std::string& sPath, std::string& sText) {
    sText.clear();
    const OpenFile file(sPath, O_RDONLY);
    if (!file.IsOpen()) return errno == ENOENT ? FileResult{} : Failed(sPath);
    std::array<char, 16384> part; // NOLINT(*-member-init): filled by read
    for (;;) {
        const ssize_t got = ::read(file.Get(), part.data(), part.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Failed(sPath);
        if (got == 0) return {};
        sText.append(part.data(), static_cast<std::size_t>(got));
    }
}

FileResult ReplaceFile(const std::string& sPath, std::string_view sText) {
    const std::string beside = sPath + ".new";
    if (FileResult written = WriteNewFile(beside, sText); !written) {
        ::unlink(beside.c_str());
        return written;
    }
    if (::rename(beside.c_str(), sPath.c_str()) != 0) {
        FileResult failed = Failed(sPath);
        ::unlink(beside.c_str());
        return failed;
    }
    const std::string folder = FolderOf(sPath);
    const OpenFile directory(folder, O_RDONLY | O_DIRECTORY);
    if (!directory.IsOpen() || ::fsync(directory.Get()) != 0) return Failed(folder);
    return {};
}

FileResult MakeFoldersFor(const std::string& sPath) {
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

FileResult MoveAside(const std::string& sPath, std::string& sNewPath) {
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
    mFd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (mFd < 0) {
        mResult = Failed(path);
        return;
    }
    constexpr std::int32_t step = 5; // ms; a holder writes one small file
    for (std::int32_t waited = 0; ::flock(mFd, LOCK_EX | LOCK_NB) != 0; waited += step) {
        if (waited >= lTimeout || (errno != EWOULDBLOCK && errno != EINTR)) {
            mResult = Failed(path);
            return;
        }
        const timespec pause{0, step * 1'000'000L};
        ::nanosleep(&pause, nullptr);
    }
}

FileLock::~FileLock() {
    if (mFd >= 0) ::close(mFd);
}

} // namespace qncomm

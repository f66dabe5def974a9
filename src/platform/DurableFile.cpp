#include "platform/DurableFile.h"

#include "common/HostPath.h"
#include "platform/FileOpening.h"
#include "platform/SystemErrors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

constexpr mode_t PrivateMode = 0600;
constexpr std::uint32_t PermissionBits = 0777;

/// What the process's umask takes away. The call that tells it sets it, for a moment and for every
/// thread of the host, so it is asked only where the kernel's list is not to be had.
mode_t Umask() {
    constexpr std::string_view key = "\nUmask:\t";
    constexpr int octal = 8;
    std::string status;
    static_cast<void>(ReadWholeFile("/proc/self/status", {}, status));
    const std::size_t at = status.find(key);
    mode_t mask = 0;
    if (at != std::string::npos) {
        const char* const first = status.data() + at + key.size();
        if (std::from_chars(first, status.data() + status.size(), mask, octal).ec == std::errc())
            return mask;
    }
    mask = ::umask(0);
    ::umask(mask);
    return mask;
}

/// Read and write for everybody, as far as the process's umask leaves it.
mode_t UsualMode() {
    return 0666U & ~Umask();
}

/// Where no file stands that is being written, in the folder of the target: the first of a row of
/// names that no writer holds. A name does not contain the target's, which with an ending could be
/// too long or another file's. A writer holds its file's lock, so that what a killed one left is
/// known and cleared by the next.
class FreePlace {
  public:
    explicit FreePlace(const std::string& target) : mStem(FolderOf(target) + ".qncomm-") {}

    /// Makes the file and locks it. Returns 0 with path and fd set, or errno.
    int Take(std::string& path, Fd& fd) {
        for (int n = 1; n <= Most; ++n) {
            path = mStem + std::to_string(n);
            ClearLeftOver(path);
            fd.Reset(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, PrivateMode));
            if (!fd && errno != EEXIST) return errno;
            // Another writer may have taken it for a left-over before it was locked.
            if (fd && Lock(path, fd)) return 0;
        }
        return EEXIST;
    }

    /// Locks an open file and tells whether it is still the one at that path.
    static bool Lock(const std::string& path, const Fd& fd) {
        struct ::stat open {};
        struct ::stat there {};
        return ::flock(fd.Get(), LOCK_EX | LOCK_NB) == 0 && ::fstat(fd.Get(), &open) == 0
               && ::lstat(path.c_str(), &there) == 0 && open.st_dev == there.st_dev
               && open.st_ino == there.st_ino;
    }

  private:
    static constexpr int Most = 1000;

    static void ClearLeftOver(const std::string& path) {
        struct ::stat there {};
        Fd former;
        if (OpenToRead(path, {.links = false}, former).Ok() && Lock(path, former)
            && ::fstat(former.Get(), &there) == 0 && there.st_uid == ::geteuid())
            ::unlink(path.c_str());
    }

    std::string mStem;
};

/// The file beside a target that bears its name with an ending. Of a name that is too long for both
/// the end gives way to a sum of all of it, so that the same target has the same file again.
std::string Beside(const std::string& target, const std::string& ending) {
    constexpr std::size_t longest = NAME_MAX;
    const std::string folder = FolderOf(target);
    const std::size_t length = target.size() - folder.size();
    if (length + ending.size() <= longest) return target + ending;
    std::uint32_t sum = 2166136261U;
    for (const char c : target.substr(folder.size()))
        sum = (sum ^ static_cast<unsigned char>(c)) * 16777619U;
    std::array<char, 10> text{};
    std::snprintf(text.data(), text.size(), "~%08X", sum);
    std::string name = target.substr(folder.size(), longest - text.size() + 1 - ending.size());
    // No character is cut in two.
    while (!name.empty()
           && (static_cast<unsigned char>(target[folder.size() + name.size()]) & 0xC0U) == 0x80)
        name.pop_back();
    return folder + name + text.data() + ending;
}

/// Brings the folder's list of names to the disk. A folder that may be written but not read, and a
/// file system that cannot do this for folders, are left as they are.
bool SyncFolder(const std::string& folder) {
    const Fd fd(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd) return errno == EACCES;
    return ::fsync(fd.Get()) == 0 || errno == EINVAL;
}

IoResult WriteInto(const std::string& path, std::string_view bytes) {
    Fd fd;
    IoResult result = OpenToWrite(path, FileStart::End, {.streams = true}, PrivateMode, fd);
    const int error = result.Ok() ? WriteAll(fd.Get(), bytes) : 0;
    return error == 0 ? result : FileFailure(error, path);
}

} // namespace

IoResult DurableFile::Create(const std::string& sTarget) {
    Discard();
    mTarget = sTarget;
    if (IoResult resolved = ResolveTarget(mTarget); !resolved.Ok()) return resolved;
    const int error = FreePlace(mTarget).Take(mBeside, mFile);
    mLength = 0;
    return error == 0 ? IoResult{} : Failure(error);
}

IoResult DurableFile::Open(const std::string& sTarget, const std::string& sEnding) {
    Discard();
    mTarget = sTarget;
    if (IoResult resolved = ResolveTarget(mTarget); !resolved.Ok()) return resolved;
    mBeside = Beside(mTarget, sEnding);
    Fd file;
    IoResult opened =
        OpenToWrite(mBeside, FileStart::Kept, {.links = false, .own = true}, PrivateMode, file);
    if (!opened.Ok()) return opened;
    if (!FreePlace::Lock(mBeside, file))
        return {IoStatus::Busy, EBUSY, mBeside + ": another program writes it"};
    mFile = std::move(file);
    const off_t end = ::lseek(mFile.Get(), 0, SEEK_END);
    mLength = end > 0 ? static_cast<std::uint64_t>(end) : 0;
    return {};
}

IoResult DurableFile::Failure(int error) const {
    return FileFailure(error, mTarget);
}

IoResult DurableFile::WriteAt(std::uint64_t lOffset, std::string_view sBytes) {
    if (::lseek(mFile.Get(), static_cast<off_t>(lOffset), SEEK_SET) < 0) return Failure(errno);
    if (const int error = WriteAll(mFile.Get(), sBytes); error != 0) return Failure(error);
    mLength = std::max(mLength, lOffset + sBytes.size());
    return {};
}

IoResult DurableFile::Clear() {
    if (::ftruncate(mFile.Get(), 0) != 0) return Failure(errno);
    mLength = 0;
    return {};
}

std::int64_t DurableFile::Modified() const {
    struct ::stat facts {};
    return ::fstat(mFile.Get(), &facts) == 0 ? facts.st_mtim.tv_sec : 0;
}

IoResult DurableFile::SetModified(std::int64_t lSeconds) {
    const timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(lSeconds), 0}};
    return ::futimens(mFile.Get(), times) == 0 ? IoResult{} : Failure(errno);
}

IoResult DurableFile::ReadAt(std::uint64_t lOffset, std::size_t lMost, std::string& sBytes) const {
    sBytes.resize(lMost);
    ssize_t got = 0;
    do
        got = ::pread(mFile.Get(), sBytes.data(), lMost, static_cast<off_t>(lOffset));
    while (got < 0 && errno == EINTR);
    sBytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return got < 0 ? Failure(errno) : IoResult{};
}

IoResult DurableFile::Commit(FileMode mode) {
    if (mode == FileMode::Private) return Commit(std::uint32_t{PrivateMode});
    struct ::stat there {};
    if (::stat(mTarget.c_str(), &there) != 0) return Commit(std::uint32_t{UsualMode()});
    // Only the superuser can give a file away; to anybody else it becomes one of their own.
    static_cast<void>(::fchown(mFile.Get(), there.st_uid, there.st_gid) == 0);
    return Commit(std::uint32_t{there.st_mode});
}

IoResult DurableFile::Commit(std::uint32_t lPermissions) {
    if (::fchmod(mFile.Get(), lPermissions & PermissionBits) != 0 || ::fsync(mFile.Get()) != 0
        || std::rename(mBeside.c_str(), mTarget.c_str()) != 0)
        return Failure(errno);
    mFile.Reset();
    return SyncFolder(FolderOf(mTarget)) ? IoResult{} : Failure(errno);
}

void DurableFile::Keep() {
    mFile.Reset();
}

void DurableFile::Discard() {
    if (mFile) ::unlink(mBeside.c_str());
    mFile.Reset();
}

IoResult ReplaceFile(const std::string& sTarget, std::string_view sBytes, FileMode mode) {
    DurableFile file;
    IoResult result = file.Create(sTarget);
    if (result.Ok()) result = file.Append(sBytes);
    if (result.Ok()) result = file.Commit(mode);
    return result;
}

IoResult SaveFile(const std::string& sPath, std::string_view sBytes) {
    std::error_code ignored;
    const fs::file_status there = fs::status(sPath, ignored);
    if (!fs::exists(there)) return ReplaceFile(sPath, sBytes);
    const bool direct = !fs::is_regular_file(there);
    if (IoResult allowed = WriteInto(sPath, direct ? sBytes : ""); direct || !allowed.Ok())
        return allowed;
    IoResult result = ReplaceFile(sPath, sBytes);
    // Folders of the kernel's own, such as /proc, refuse a new name as if the path were not there.
    return result.systemNumber == ENOENT ? FileFailure(EROFS, sPath) : result;
}

} // namespace qncomm

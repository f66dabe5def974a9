#include "platform/DurableFile.h"

#include "common/HostPath.h"
#include "platform/SystemErrors.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

constexpr mode_t PrivateMode = 0600;
constexpr mode_t PermissionBits = 0777;

/// Read and write for everybody, as far as the process's umask leaves it. The only way to read the
/// mask is to set it.
mode_t UsualMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

mode_t ModeFor(FileMode mode, const std::string& target) {
    if (mode == FileMode::Private) return PrivateMode;
    struct ::stat there {};
    if (mode == FileMode::Replaced && ::stat(target.c_str(), &there) == 0)
        return there.st_mode & PermissionBits;
    return UsualMode();
}

bool IsFolder(const std::string& path) {
    struct ::stat there {};
    return ::stat(path.c_str(), &there) == 0 && S_ISDIR(there.st_mode);
}

/// Brings the folder's list of names to the disk. A folder that may be written but not read, and a
/// file system that cannot do this for folders, are left as they are.
bool SyncFolder(const std::string& folder) {
    const Fd fd(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd) return errno == EACCES;
    return ::fsync(fd.Get()) == 0 || errno == EINVAL;
}

IoResult WriteInto(const std::string& path, std::string_view bytes) {
    const Fd fd(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    const int error = fd ? WriteAll(fd.Get(), bytes) : errno;
    return error == 0 ? IoResult{} : FileFailure(error, path);
}

} // namespace

IoResult DurableFile::Create(const std::string& sTarget) {
    Discard();
    mTarget = sTarget;
    // Not made of the target's name, which with an ending could be too long or another file's.
    mBeside = FolderOf(sTarget) + ".qncomm-XXXXXX";
    return IsFolder(sTarget) ? Failure(EISDIR) : Adopt(::mkostemp(mBeside.data(), O_CLOEXEC));
}

IoResult DurableFile::Open(const std::string& sTarget, const std::string& sBeside) {
    Discard();
    mTarget = sTarget;
    mBeside = sBeside;
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
    return IsFolder(sTarget) ? Failure(EISDIR) : Adopt(::open(mBeside.c_str(), flags, PrivateMode));
}

IoResult DurableFile::Adopt(int fd) {
    if (fd < 0) return Failure(errno);
    mFile.Reset(fd);
    const off_t end = ::lseek(fd, 0, SEEK_END);
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

IoResult DurableFile::SetModified(std::int64_t lSeconds) {
    const timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(lSeconds), 0}};
    return ::futimens(mFile.Get(), times) == 0 ? IoResult{} : Failure(errno);
}

IoResult DurableFile::Commit(FileMode mode) {
    return Commit(ModeFor(mode, mTarget));
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
    if (!fs::exists(there)) return ReplaceFile(sPath, sBytes, FileMode::Usual);
    const bool direct = !fs::is_regular_file(there);
    if (IoResult allowed = WriteInto(sPath, direct ? sBytes : ""); direct || !allowed.Ok())
        return allowed;
    IoResult result =
        ReplaceFile(fs::canonical(sPath, ignored).string(), sBytes, FileMode::Replaced);
    // Folders of the kernel's own, such as /proc, refuse a new name as if the path were not there.
    return result.systemNumber == ENOENT ? FileFailure(EROFS, sPath) : result;
}

} // namespace qncomm

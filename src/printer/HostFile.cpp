#include "HostFile.h"

#include "common/RuntimeErrors.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

struct Cause {
    std::errc reason;
    std::int32_t number;
};

constexpr std::array Causes{
    Cause{std::errc::permission_denied, RtPermissionDenied},
    Cause{std::errc::operation_not_permitted, RtPermissionDenied},
    Cause{std::errc::text_file_busy, RtPermissionDenied},
    Cause{std::errc::no_space_on_device, RtDiskFull},
    Cause{std::errc::file_too_large, RtDiskFull},
    Cause{std::errc::too_many_files_open, RtTooManyFiles},
    Cause{std::errc::too_many_files_open_in_system, RtTooManyFiles},
    Cause{std::errc::io_error, RtDeviceIO},
};

/// Raises the runtime's number for what the system said; absent is the one for a path that is not
/// there.
[[noreturn]] void RaiseFileError(const std::error_code& error, std::int32_t absent) {
    if (error == std::errc::no_such_file_or_directory) RaiseRuntimeError(absent);
    for (const Cause& cause : Causes)
        if (error == cause.reason) RaiseRuntimeError(cause.number);
    RaiseRuntimeError(RtPathFileAccess);
}

std::error_code LastError() {
    return {errno, std::generic_category()};
}

void Write(const fs::path& path, std::string_view bytes) {
    errno = 0;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (out) out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
    if (!out) RaiseFileError(LastError(), RtPathNotFound);
}

/// Where the new bytes wait beside the target until they are complete.
fs::path FreePathBeside(const fs::path& target) {
    fs::path path = target;
    std::error_code ignored;
    for (int i = 0; i == 0 || fs::exists(fs::symlink_status(path, ignored)); ++i)
        path = target.string() + ".new" + (i > 0 ? std::to_string(i) : std::string());
    return path;
}

/// Removes a file that was not moved to its place.
class Leftover {
  public:
    explicit Leftover(fs::path path) : mPath(std::move(path)) {}
    ~Leftover() {
        std::error_code ignored;
        fs::remove(mPath, ignored);
    }
    Leftover(const Leftover&) = delete;
    Leftover& operator=(const Leftover&) = delete;

  private:
    fs::path mPath;
};

/// Raises when an existing file may not be written, although it could be replaced.
void RequireWritable(const fs::path& path) {
    errno = 0;
    if (!std::ofstream(path, std::ios::binary | std::ios::app))
        RaiseFileError(LastError(), RtPathNotFound);
}

} // namespace

HostFile::HostFile(const std::string& sPath) : mPath(sPath) {
    std::error_code error;
    if (fs::is_directory(sPath, error)) RaiseRuntimeError(RtPathFileAccess);
    errno = 0;
    mStream.open(sPath, std::ios::binary);
    if (!mStream) RaiseFileError(LastError(), RtFileNotFound);
    mLength = fs::file_size(sPath, error);
    if (error) RaiseFileError(error, RtFileNotFound);
}

std::string HostFile::Read(std::size_t lBytes) {
    std::string bytes(lBytes, '\0');
    if (!mStream.read(bytes.data(), static_cast<std::streamsize>(lBytes)))
        RaiseRuntimeError(mStream.eof() ? RtInputPastEnd : RtDeviceIO);
    return bytes;
}

void WriteHostFile(const std::string& sPath, std::string_view sBytes) {
    std::error_code ignored;
    const fs::file_status status = fs::status(sPath, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        Write(sPath, sBytes);
        return;
    }
    if (fs::exists(status)) RequireWritable(sPath);
    const fs::path target = fs::exists(status) ? fs::canonical(sPath, ignored) : fs::path(sPath);
    const fs::path beside = FreePathBeside(target);
    const Leftover leftover(beside);
    Write(beside, sBytes);
    if (fs::exists(status)) fs::permissions(beside, status.permissions(), ignored);
    std::error_code error;
    fs::rename(beside, target, error);
    if (error) RaiseFileError(error, RtPathNotFound);
}

} // namespace qncomm

#include "platform/SystemFiles.h"

#include "common/RuntimeErrors.h"
#include "platform/DurableFile.h"
#include "platform/Fd.h"
#include "platform/FileOpening.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

struct Cause {
    int error;
    std::int32_t number;
};

constexpr std::array Causes{
    Cause{EACCES, RtPermissionDenied},  Cause{EPERM, RtPermissionDenied},
    Cause{ETXTBSY, RtPermissionDenied}, Cause{ENOSPC, RtDiskFull},
    Cause{EFBIG, RtDiskFull},           Cause{EMFILE, RtTooManyFiles},
    Cause{ENFILE, RtTooManyFiles},      Cause{EIO, RtDeviceIO},
};

/// Raises the runtime's number for what the system said (errno); absent is the one for a path that
/// is not there.
[[noreturn]] void RaiseFileError(int error, std::int32_t absent) {
    if (error == ENOENT) RaiseRuntimeError(absent);
    for (const Cause& cause : Causes)
        if (error == cause.error) RaiseRuntimeError(cause.number);
    RaiseRuntimeError(RtPathFileAccess);
}

class OpenedFile final : public HostFile {
  public:
    OpenedFile(const std::string& path, std::uintmax_t length, Fd file)
        : HostFile(path, length), mFile(std::move(file)) {}

    std::string ReadSome(std::size_t lMost) override {
        std::string bytes(lMost, '\0');
        ssize_t got = 0;
        do
            got = ::read(mFile.Get(), bytes.data(), bytes.size());
        while (got < 0 && errno == EINTR);
        if (got < 0) RaiseRuntimeError(RtDeviceIO);
        bytes.resize(static_cast<std::size_t>(got));
        return bytes;
    }

  private:
    Fd mFile;
};

class FilesOfSystem final : public HostFiles {
  public:
    bool Exists(const std::string& sPath) override {
        std::error_code ignored;
        return fs::is_regular_file(sPath, ignored);
    }

    std::uintmax_t Size(const std::string& sPath) override {
        if (!Exists(sPath)) return 0;
        std::error_code error;
        const std::uintmax_t size = fs::file_size(sPath, error);
        return error ? 0 : size;
    }

    bool CanCreate(const std::string& sPath) override { return CanCreateFile(sPath); }

    std::string CurrentFolder() override {
        std::error_code error;
        return fs::current_path(error).string();
    }

    std::unique_ptr<HostFile> Open(const std::string& sPath) override {
        Fd file;
        struct ::stat is {};
        const IoResult opened = OpenToRead(sPath, {}, file);
        if (!opened.Ok()) RaiseFileError(opened.systemNumber, RtFileNotFound);
        if (::fstat(file.Get(), &is) != 0) RaiseFileError(errno, RtFileNotFound);
        return std::make_unique<OpenedFile>(sPath, static_cast<std::uintmax_t>(is.st_size),
                                            std::move(file));
    }

    void Save(const std::string& sPath, std::string_view sBytes) override {
        const IoResult result = SaveFile(sPath, sBytes);
        if (!result.Ok()) RaiseFileError(result.systemNumber, RtPathNotFound);
    }

    void Delete(const std::string& sPath) override {
        std::error_code error;
        if (fs::remove(sPath, error)) return;
        if (!error) RaiseRuntimeError(RtFileNotFound);
        RaiseRuntimeError(error == std::errc::permission_denied ? RtPermissionDenied
                                                                : RtPathFileAccess);
    }
};

} // namespace

HostFiles& SystemFiles() {
    static FilesOfSystem files;
    return files;
}

} // namespace qncomm

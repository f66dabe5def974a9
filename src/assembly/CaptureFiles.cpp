#include "assembly/CaptureFiles.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace qncomm {
namespace {

using terminal::CaptureFile;
using terminal::CaptureOpening;
using terminal::CaptureResult;
using terminal::CaptureStatus;

struct StatusRow {
    std::errc error;
    CaptureStatus status;
};

constexpr std::array StatusRows{
    StatusRow{std::errc::no_such_file_or_directory, CaptureStatus::Missing},
    StatusRow{std::errc::not_a_directory, CaptureStatus::Missing},
    StatusRow{std::errc::permission_denied, CaptureStatus::Denied},
    StatusRow{std::errc::operation_not_permitted, CaptureStatus::Denied},
    StatusRow{std::errc::read_only_file_system, CaptureStatus::Denied},
    StatusRow{std::errc::is_a_directory, CaptureStatus::Unsupported},
    StatusRow{std::errc::no_space_on_device, CaptureStatus::Full},
    StatusRow{std::errc::file_too_large, CaptureStatus::Full},
};

CaptureResult FailureOf(int number) {
    const std::error_code code(number, std::generic_category());
    CaptureStatus status = CaptureStatus::Failed;
    for (const StatusRow& row : StatusRows)
        if (code == row.error) status = row.status;
    return {status, number, code.message()};
}

struct CloseFile {
    // Nothing is buffered, so closing has nothing left to fail at.
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

class DiskCaptureFile final : public CaptureFile {
  public:
    explicit DiskCaptureFile(FileHandle file) : mFile(std::move(file)) {}

    CaptureResult Append(std::string_view sBytes) override {
        errno = 0;
        const std::size_t written = std::fwrite(sBytes.data(), 1, sBytes.size(), mFile.get());
        return written == sBytes.size() ? CaptureResult() : FailureOf(errno);
    }

  private:
    FileHandle mFile;
};

} // namespace

CaptureOpening OpenCaptureFile(const std::string& sPath) {
    std::error_code ignored; // what cannot be looked at says why when it is opened
    const std::filesystem::file_status status = std::filesystem::status(sPath, ignored);
    if (std::filesystem::is_directory(status))
        return {nullptr, {CaptureStatus::Unsupported, 0, "this is a folder"}};
    if (std::filesystem::is_fifo(status))
        return {nullptr, {CaptureStatus::Unsupported, 0, "this is a pipe"}};
    FileHandle file(std::fopen(sPath.c_str(), "ab"));
    if (!file) return {nullptr, FailureOf(errno)};
    // Unbuffered: each piece is with the system as soon as it is appended.
    if (std::setvbuf(file.get(), nullptr, _IONBF, 0) != 0) return {nullptr, FailureOf(errno)};
    return {std::make_unique<DiskCaptureFile>(std::move(file)), {}};
}

} // namespace qncomm

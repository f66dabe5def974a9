#include "assembly/CaptureFiles.h"

#include "platform/Fd.h"
#include "platform/FileOpening.h"

#include <array>
#include <system_error>
#include <utility>

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

class DiskCaptureFile final : public CaptureFile {
  public:
    explicit DiskCaptureFile(Fd file) : mFile(std::move(file)) {}

    CaptureResult Append(std::string_view sBytes) override {
        const int error = WriteAll(mFile.Get(), sBytes);
        return error == 0 ? CaptureResult() : FailureOf(error);
    }

  private:
    Fd mFile;
};

} // namespace

CaptureOpening OpenCaptureFile(const std::string& sPath) {
    Fd file;
    const IoResult opened = OpenToWrite(sPath, FileStart::End, {.streams = true}, 0666, file);
    if (opened.status == IoStatus::Unsupported)
        return {nullptr, {CaptureStatus::Unsupported, 0, opened.text.substr(sPath.size() + 2)}};
    if (!opened.Ok()) return {nullptr, FailureOf(opened.systemNumber)};
    return {std::make_unique<DiskCaptureFile>(std::move(file)), {}};
}

} // namespace qncomm

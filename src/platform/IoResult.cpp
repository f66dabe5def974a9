#include "platform/IoResult.h"

#include "platform/SystemErrors.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <system_error>

namespace qncomm {
namespace {

struct ErrorMeaning {
    int error;
    IoStatus status;
};

constexpr std::array OpenErrors{
    ErrorMeaning{ENOENT, IoStatus::Missing},     ErrorMeaning{ENODEV, IoStatus::Missing},
    ErrorMeaning{ENXIO, IoStatus::Missing},      ErrorMeaning{ENOTDIR, IoStatus::Missing},
    ErrorMeaning{EBUSY, IoStatus::Busy},         ErrorMeaning{EACCES, IoStatus::Denied},
    ErrorMeaning{EPERM, IoStatus::Denied},       ErrorMeaning{EINVAL, IoStatus::Unsupported},
    ErrorMeaning{ETIMEDOUT, IoStatus::TimedOut},
};

} // namespace

const char* NameOf(IoStatus status) {
    static constexpr std::array names{"done",        "missing",   "busy", "denied",
                                      "unsupported", "timed out", "lost", "failed"};
    return names.at(static_cast<std::size_t>(status));
}

std::string SystemText(int error) {
    std::string text = std::generic_category().message(error);
    if (text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0)
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return text;
}

IoResult OpenFailure(int error) {
    const auto* const found =
        std::find_if(OpenErrors.begin(), OpenErrors.end(),
                     [error](const ErrorMeaning& meaning) { return meaning.error == error; });
    const IoStatus status = found != OpenErrors.end() ? found->status : IoStatus::Failed;
    return {status, error, SystemText(error)};
}

IoResult FileFailure(int error, const std::string& sPath) {
    IoResult failure = OpenFailure(error != 0 ? error : EIO);
    failure.text = sPath + ": " + failure.text;
    return failure;
}

IoResult LineFailure(int error, const std::string& sLost) {
    return {IoStatus::Lost, error, error == 0 ? sLost : sLost + " (" + SystemText(error) + ")"};
}

} // namespace qncomm

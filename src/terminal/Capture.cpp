#include "Capture.h"

namespace qncomm::terminal {

CaptureResult Capture::Start(const std::string& sPath) {
    if (!mOpener) return {CaptureStatus::Unsupported, 0, "this terminal writes no files"};
    CaptureOpening opening = mOpener(sPath);
    if (opening.file == nullptr) return opening.result;
    mFile = std::move(opening.file);
    mPath = sPath;
    mFailure.reset();
    return {};
}

std::optional<CaptureResult> Capture::Write(std::string_view sBytes) {
    if (mFile == nullptr || sBytes.empty()) return std::nullopt;
    CaptureResult result = mFile->Append(sBytes);
    if (result.Ok()) return std::nullopt;
    Stop();
    mFailure = result;
    return result;
}

} // namespace qncomm::terminal

#include "Capture.h"

namespace qncomm::terminal {

CaptureResult Capture::Start(const std::string& sPath) {
    CaptureOpening opening = mOpener(sPath);
    if (opening.file == nullptr) {
        opening.result.text = "cannot capture to \"" + sPath + "\": " + opening.result.text;
        return opening.result;
    }
    mFile = std::move(opening.file);
    mPath = sPath;
    mFailure.reset();
    return {};
}

std::optional<CaptureResult> Capture::Write(std::string_view sBytes) {
    if (mFile == nullptr || sBytes.empty()) return std::nullopt;
    CaptureResult result = mFile->Append(sBytes);
    if (result.Ok()) return std::nullopt;
    result.text = "capture to \"" + mPath + "\" has ended: " + result.text;
    Stop();
    mFailure = result;
    return result;
}

} // namespace qncomm::terminal

#pragma once

#include "terminal/CaptureFile.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm::terminal {

/// What the terminal is given to show, written to a file too. A write that fails ends the capture:
/// the file then ends where the disk was full, and has no hole.
class Capture {
  public:
    explicit Capture(CaptureOpener opener) : mOpener(std::move(opener)) {}

    /// The new file takes the old one's place; when it cannot be opened the old one goes on.
    CaptureResult Start(const std::string& sPath);
    void Stop() { mFile.reset(); }

    bool IsOn() const { return mFile != nullptr; }
    /// The file's path, "" while no capture runs.
    std::string Path() const { return IsOn() ? mPath : std::string(); }

    /// The failure when this write was the one that ended the capture.
    std::optional<CaptureResult> Write(std::string_view sBytes);

    /// What ended the last capture, until one is started.
    const std::optional<CaptureResult>& Failure() const { return mFailure; }

  private:
    CaptureOpener mOpener;
    std::unique_ptr<CaptureFile> mFile;
    std::string mPath;
    std::optional<CaptureResult> mFailure;
};

} // namespace qncomm::terminal

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm::terminal {

/// What became of opening, or of writing to, the file of a capture.
enum class CaptureStatus {
    Done,        ///< it is open, or the bytes are in it
    Missing,     ///< a folder of the path is not there
    Denied,      ///< this user may not write there
    Unsupported, ///< the path names something that is not a file to append to
    Full,        ///< no space, or the file may not grow further
    Failed,      ///< any other error of the system
};

/// The outcome as a value: nothing of a capture is thrown.
struct CaptureResult {
    CaptureStatus status = CaptureStatus::Done; ///< what a program acts on
    int systemNumber = 0;                       ///< errno; 0 when the system gave none
    std::string text; ///< to show, in UTF-8 without a final period; empty when done

    /// Whether it is Done.
    bool Ok() const { return status == CaptureStatus::Done; }
};

/// A file that a capture appends to; the destructor closes it.
class CaptureFile {
  public:
    virtual ~CaptureFile() = default;

    /// Appends all of it and hands it to the system before it returns: another program that reads
    /// the file sees it, and a crash of this one loses nothing. After a failure a part of it may
    /// have been written.
    [[nodiscard]] virtual CaptureResult Append(std::string_view sBytes) = 0;
};

/// A file, or why there is none.
struct CaptureOpening {
    std::unique_ptr<CaptureFile> file; ///< null when the result is not Done
    CaptureResult result;              ///< why there is none
};

/// How a terminal opens the file of a capture, given its path in UTF-8.
using CaptureOpener = std::function<CaptureOpening(const std::string& sPath)>;

} // namespace qncomm::terminal

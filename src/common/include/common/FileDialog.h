#pragma once

#include <optional>
#include <string>
#include <vector>

namespace qncomm {

enum class FileDialogKind { Open, Save };

/// A kind of file that a dialog offers. "*.*" stands for every file, whether its name holds a point
/// or not.
struct FileFilter {
    std::string text;    ///< such as "Text files (*.txt)"
    std::string pattern; ///< such as "*.txt"
    bool operator==(const FileFilter&) const = default;
};

/// What the common file dialog is asked. All texts and paths are UTF-8.
struct FileDialog {
    FileDialogKind kind = FileDialogKind::Open;
    std::string title;               ///< empty: the desktop's own
    std::vector<FileFilter> filters; ///< the first is the one shown
    std::string folder;              ///< where to start; empty: the desktop decides
    std::string defaultExtension;    ///< for a name typed without one, with or without its point
    bool mustExist = false;          ///< Open: a name that is no file is refused
    bool confirmOverwrite = false;   ///< Save: an existing file is asked about
    bool confirmCreate = false;      ///< Save: a new file is asked about
};

/// Lets the person choose a file. A face or a host implements it.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;

    /// The full path of the chosen file, nothing when the person cancelled.
    virtual std::optional<std::string> ChooseFile(const FileDialog& dialog) = 0;
};

} // namespace qncomm

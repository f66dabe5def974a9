#pragma once

#include "common/HostFiles.h"

#include <optional>
#include <string>
#include <vector>

namespace qncomm {

/// What the chosen file is for.
enum class FileDialogKind {
    Open, ///< to be read
    Save, ///< to be written
};

/// A kind of file that a dialog offers. "*.*" stands for every file, whether its name holds a point
/// or not.
struct FileFilter {
    std::string text;    ///< such as "Text files (*.txt)"
    std::string pattern; ///< such as "*.txt"
    /// Whether text and pattern are the same.
    bool operator==(const FileFilter&) const = default;
};

/// What the common file dialog is asked. All texts and paths are UTF-8.
struct FileDialog {
    FileDialogKind kind = FileDialogKind::Open; ///< to be read or to be written
    std::string title;                          ///< empty: the desktop's own
    std::vector<FileFilter> filters;            ///< the first is the one shown
    std::string folder;                         ///< where to start; empty: the desktop decides
    std::string defaultExtension;  ///< for a name typed without one, with or without its point
    bool mustExist = false;        ///< Open: a name that is no file is refused
    bool confirmOverwrite = false; ///< Save: an existing file is asked about
    bool confirmCreate = false;    ///< Save: a new file is asked about
};

/// A chosen path and what is still to be done about it. Every face follows this.
struct FileChoice {
    /// What the face does next.
    enum class Next {
        Take,   ///< the path is the answer
        Refuse, ///< it must exist and does not
        Ask,    ///< the user is asked the question, and the path is the answer after a Yes
    };
    std::string path;       ///< with the default extension where it lacked one
    Next next = Next::Take; ///< what the face does now
    std::string question;   ///< with a question mark; empty unless the user is to be asked
};

/// The path with the dialog's default extension. A file name that holds a "." has one already, and
/// so has a file to be opened that exists as it was typed.
std::string WithDefaultExtension(const FileDialog& dialog, const std::string& sPath,
                                 HostFiles& files);

/// Judges the full path that a person chose by what the dialog wants and what is on the disk.
FileChoice JudgeChoice(const FileDialog& dialog, const std::string& sPath, HostFiles& files);

/// Lets the user choose a file. A face or a host implements it.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;

    /// The full path of the chosen file, nothing when the user cancelled.
    virtual std::optional<std::string> ChooseFile(const FileDialog& dialog) = 0;
};

} // namespace qncomm

#pragma once

#include "common/Desktop.h"
#include "common/FileDialog.h"
#include "console/ConsoleAsker.h"

#include <optional>
#include <string>

namespace qncomm {

/// The file dialog at a console: a path that was given beforehand, or one that the user types.
class ConsoleFileDialogs final : public FileDialogs {
  public:
    /// Both must outlive the object.
    ConsoleFileDialogs(ConsoleAsker& asker, Desktop& desktop) : mAsker(asker), mDesktop(desktop) {}

    /// Returns the full path; a relative one starts at this process's folder. A file that must
    /// exist and does not is reported and counts as cancelled. A path that was given beforehand
    /// needs no confirmation; a typed one does where the dialog asks for it.
    std::optional<std::string> ChooseFile(const FileDialog& dialog) override;

  private:
    bool Confirmed(const FileDialog& dialog, const std::string& question);

    ConsoleAsker& mAsker;
    Desktop& mDesktop;
};

} // namespace qncomm

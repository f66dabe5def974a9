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
    /// Both outlive the object.
    ConsoleFileDialogs(ConsoleAsker& asker, Desktop& desktop) : mAsker(asker), mDesktop(desktop) {}

    /// The full path: relative ones start at this process's folder. A file that must exist and does
    /// not is told and counts as cancelled. A path that was given is not asked about again; a typed
    /// one is, as the dialog wants it.
    std::optional<std::string> ChooseFile(const FileDialog& dialog) override;

  private:
    bool Confirmed(const FileDialog& dialog, const std::string& question);

    ConsoleAsker& mAsker;
    Desktop& mDesktop;
};

} // namespace qncomm

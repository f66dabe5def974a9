#pragma once

#include "common/FileDialog.h"

#include <QPointer>
#include <QWidget>

namespace qncomm {

/// The platform's own file dialogs.
class QtFileDialogs : public FileDialogs {
  public:
    /// As for message boxes.
    explicit QtFileDialogs(QWidget* parent = nullptr) : mParent(parent) {}

    /// The user is asked again while a choice cannot be had: a file that must exist and does not,
    /// or one that is not to be made.
    std::optional<std::string> ChooseFile(const FileDialog& dialog) override;

  private:
    QPointer<QWidget> mParent;
};

} // namespace qncomm

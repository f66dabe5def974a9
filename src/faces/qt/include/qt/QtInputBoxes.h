#pragma once

#include "common/InputBox.h"

#include <QPointer>
#include <QWidget>

namespace qncomm {

/// Asks for a line of text in a window of the platform.
class QtInputBoxes : public InputBoxes {
  public:
    /// As for message boxes.
    explicit QtInputBoxes(QWidget* parent = nullptr) : mParent(parent) {}

    /// The offered text is selected; characters that the line has no byte for come back as "?".
    std::string ShowInputBox(const InputBox& box) override;

  private:
    QPointer<QWidget> mParent;
};

} // namespace qncomm

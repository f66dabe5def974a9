#pragma once

#include "common/Desktop.h"

#include <QPointer>
#include <QWidget>

namespace qncomm {

/// Message boxes of the platform; the log goes to the logging category "qncomm" as debug messages.
class QtDesktop : public Desktop {
  public:
    /// The boxes belong to the window that is in front, else to the one that parent is in.
    explicit QtDesktop(QWidget* parent = nullptr) : mParent(parent) {}

    /// A question that is closed without a choice is answered by Cancel or No.
    MsgBoxResult ShowMsgBox(const MsgBox& box) override;
    void Log(std::string_view sLine) override;

  private:
    QPointer<QWidget> mParent;
};

/// The window that a box belongs to: the modal one that is shown, else the one that widget is in.
QWidget* BoxParent(QWidget* widget);

} // namespace qncomm

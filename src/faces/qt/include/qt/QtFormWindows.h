#pragma once

#include "common/Desktop.h"
#include "dialogs/FormWindows.h"

#include <QPointer>
#include <QWidget>

namespace qncomm {

/// The system's forms as windows of the platform.
///
/// An error that a form's handler raises is told in a message box and the form stays open; only
/// what is no QNError ends the form and is passed on.
class QtFormWindows : public FormWindows {
  public:
    /// The windows belong to the window that parent is in; none: they stand by themselves. The
    /// desktop outlives this object.
    QtFormWindows(QWidget* parent, Desktop& desktop) : mParent(parent), mDesktop(desktop) {}

    void ShowModal(frmCommSettings& form) override;
    void ShowModal(frmFunctionKeysSetup& form) override;
    void ShowModal(frmBinaryTransfer& form) override;
    std::unique_ptr<ShownWindow> Show(frmWaitForReboot& form) override;

  private:
    QWidget* ParentWindow() const;

    QPointer<QWidget> mParent;
    Desktop& mDesktop;
};

} // namespace qncomm

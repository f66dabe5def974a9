#pragma once

#include "common/Desktop.h"
#include "dialogs/FormTable.h"
#include "dialogs/FormWindows.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace qncomm {

class FormDialog;

/// The system's forms as windows of the platform.
///
/// An error that a form's handler raises is shown in a message box and the form stays open. Any
/// exception that is not a QNError ends the form and is rethrown.
class QtFormWindows : public FormWindows {
  public:
    /// The windows belong to the window that parent is in; without a parent they stand by
    /// themselves. The desktop must outlive this object and the windows.
    QtFormWindows(QWidget* parent, Desktop& desktop);
    QtFormWindows(const QtFormWindows&) = delete;
    QtFormWindows& operator=(const QtFormWindows&) = delete;

    void ShowModal(FormModel& form) override;
    std::unique_ptr<ShownWindow> Show(FormModel& form) override;

  private:
    template <class Form, class Dialog>
    void Register();
    QWidget* ParentWindow() const;

    QPointer<QWidget> mParent;
    Desktop& mDesktop;
    FormTable<std::unique_ptr<FormDialog>> mDialogs;
};

} // namespace qncomm

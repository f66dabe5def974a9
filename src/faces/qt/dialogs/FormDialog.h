#pragma once

#include "common/ControlModels.h"
#include "dialogs/FormModel.h"
#include "qt/ActionGuard.h"

#include <QDialog>

#include <exception>
#include <memory>

class QAbstractButton;
class QLabel;

namespace qncomm {

/// The window of a form. It closes when the form does; Esc, the close box and the buttons only ask
/// the form.
class FormDialog : public QDialog {
  public:
    /// Form and desktop must outlive the window.
    FormDialog(FormModel& form, Desktop& desktop, QWidget* parent);

    /// Shows the window until the form has closed, then removes it. Rethrows the exception that
    /// ended it earlier. A parent that is destroyed meanwhile counts as the window's close box.
    static void RunModal(std::unique_ptr<FormDialog> window);

    /// Esc: presses the cancel button.
    void reject() override;

  protected:
    const ActionGuard& Guard() const { return mGuard; }

    /// A caption that stands before a field, names it and holds its key.
    QLabel* CaptionOf(const LabelModel& model, QWidget& field);
    /// A row of buttons in the platform's order. Enter presses the first, Esc the second; they are
    /// to be bound to their models.
    QWidget* ButtonRow(QAbstractButton& accept, QAbstractButton& cancel);

    void closeEvent(QCloseEvent* event) override;

  private:
    void AskToClose();

    FormModel& mForm;
    std::shared_ptr<std::exception_ptr> mFailure; ///< read after the window has gone
    ActionGuard mGuard;
    QAbstractButton* mCancel = nullptr;
    Subscription mClosed;
};

} // namespace qncomm

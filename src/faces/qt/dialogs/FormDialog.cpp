#include "FormDialog.h"

#include "qt/Binders.h"
#include "qt/Charset.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

namespace qncomm {

FormDialog::FormDialog(FormModel& form, Desktop& desktop, QWidget* parent)
    : QDialog(parent),
      mForm(form),
      mFailure(std::make_shared<std::exception_ptr>()),
      mGuard(desktop,
             [failure = mFailure, window = QPointer<QDialog>(this)](std::exception_ptr error) {
                 *failure = std::move(error);
                 if (window) window->done(Rejected);
             }) {
    setWindowTitle(FromHost(form.Caption()));
    mClosed = form.Closed.Connect([this] { done(Accepted); });
}

void FormDialog::RunModal(std::unique_ptr<FormDialog> window) {
    FormModel& form = window->mForm;
    const auto failure = window->mFailure;
    const QPointer<FormDialog> shown(window.release()); // its parent may take it away
    shown->exec();
    delete shown.data();
    if (*failure) std::rethrow_exception(*failure);
    form.Unload(UnloadMode::ControlMenu);
}

void FormDialog::AskToClose() {
    FormModel& form = mForm;
    mGuard.Run([&form] { form.Unload(UnloadMode::ControlMenu); });
}

void FormDialog::reject() {
    if (mCancel != nullptr)
        mCancel->click();
    else
        AskToClose();
}

void FormDialog::closeEvent(QCloseEvent* event) {
    const QPointer<QDialog> self(this);
    FormModel& form = mForm;
    AskToClose();
    if (self && form.IsOpen()) event->ignore();
}

QLabel* FormDialog::CaptionOf(const LabelModel& model, QWidget& field) {
    auto* label = new QLabel(this);
    Bind(model, *label);
    label->setBuddy(&field);
    QString name = label->text();
    if (name.endsWith(u':')) name.chop(1);
    field.setAccessibleName(name);
    return label;
}

QWidget* FormDialog::ButtonRow(QAbstractButton& accept, QAbstractButton& cancel) {
    auto* row = new QDialogButtonBox(this);
    row->addButton(&accept, QDialogButtonBox::AcceptRole);
    row->addButton(&cancel, QDialogButtonBox::RejectRole);
    if (auto* button = qobject_cast<QPushButton*>(&accept)) button->setDefault(true);
    mCancel = &cancel;
    return row;
}

} // namespace qncomm

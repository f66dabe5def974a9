#include "qt/QtFormWindows.h"

#include "BinaryTransferDialog.h"
#include "CommSettingsDialog.h"
#include "FunctionKeysDialog.h"
#include "dialogs/frmWaitForReboot.h"
#include "qt/Binders.h"
#include "qt/Charset.h"

#include <QProgressBar>
#include <QVBoxLayout>

namespace qncomm {
namespace {

constexpr int RebootBarWidth = 280; // pixels

/// A bar without a button; the close box only hides it. Takes no keys from whoever has them.
class RebootDialog : public QDialog {
  public:
    RebootDialog(frmWaitForReboot& form, QWidget* parent)
        : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setWindowTitle(FromHost(frmWaitForReboot::Caption));
        auto* bar = new QProgressBar(this);
        bar->setObjectName(u"ProgressBar1"_qs);
        bar->setAccessibleName(windowTitle());
        bar->setTextVisible(false); // it shows that something waits, not how far it is
        bar->setMinimumWidth(RebootBarWidth);
        Bind(form.ProgressBar1, *bar);
        auto* layout = new QVBoxLayout(this);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        layout->addWidget(bar);
    }
};

/// Takes the window away, unless its parent did.
class ShownDialog : public ShownWindow {
  public:
    explicit ShownDialog(QDialog* window) : mWindow(window) { window->show(); }
    ~ShownDialog() override { delete mWindow.data(); }
    ShownDialog(const ShownDialog&) = delete;
    ShownDialog& operator=(const ShownDialog&) = delete;

  private:
    QPointer<QDialog> mWindow;
};

} // namespace

QWidget* QtFormWindows::ParentWindow() const {
    return mParent ? mParent->window() : nullptr;
}

void QtFormWindows::ShowModal(frmCommSettings& form) {
    FormDialog::RunModal(std::make_unique<CommSettingsDialog>(form, mDesktop, ParentWindow()));
}

void QtFormWindows::ShowModal(frmFunctionKeysSetup& form) {
    FormDialog::RunModal(std::make_unique<FunctionKeysDialog>(form, mDesktop, ParentWindow()));
}

void QtFormWindows::ShowModal(frmBinaryTransfer& form) {
    FormDialog::RunModal(std::make_unique<BinaryTransferDialog>(form, mDesktop, ParentWindow()));
}

std::unique_ptr<ShownWindow> QtFormWindows::Show(frmWaitForReboot& form) {
    return std::make_unique<ShownDialog>(new RebootDialog(form, ParentWindow()));
}

} // namespace qncomm

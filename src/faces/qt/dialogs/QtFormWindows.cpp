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

/// A bar without a button; the close box only hides it. Does not take the keyboard focus.
class RebootDialog : public FormDialog {
  public:
    RebootDialog(frmWaitForReboot& form, Desktop& desktop, QWidget* parent)
        : FormDialog(form, desktop, parent) {
        setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
        setAttribute(Qt::WA_ShowWithoutActivating);
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

/// Destroys the window, unless its parent has done so.
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

/// Registers the window of a form.
template <class Form, class Dialog>
void QtFormWindows::Register() {
    mDialogs.Add<Form>(
        [this](Form& form) { return std::make_unique<Dialog>(form, mDesktop, ParentWindow()); });
}

QtFormWindows::QtFormWindows(QWidget* parent, Desktop& desktop)
    : mParent(parent), mDesktop(desktop) {
    Register<frmBinaryTransfer, BinaryTransferDialog>();
    Register<frmCommSettings, CommSettingsDialog>();
    Register<frmFunctionKeysSetup, FunctionKeysDialog>();
    Register<frmWaitForReboot, RebootDialog>();
}

QWidget* QtFormWindows::ParentWindow() const {
    return mParent ? mParent->window() : nullptr;
}

void QtFormWindows::ShowModal(FormModel& form) {
    if (const auto* make = mDialogs.Find(form))
        FormDialog::RunModal((*make)(form));
    else
        form.Unload(UnloadMode::ControlMenu);
}

std::unique_ptr<ShownWindow> QtFormWindows::Show(FormModel& form) {
    const auto* make = mDialogs.Find(form);
    if (make == nullptr) return nullptr;
    return std::make_unique<ShownDialog>((*make)(form).release());
}

} // namespace qncomm

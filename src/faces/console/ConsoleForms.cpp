#include "console/ConsoleForms.h"

#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmCommSettings.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "dialogs/frmWaitForReboot.h"

#include <algorithm>

namespace qncomm {
namespace {

/// Shows the reboot wait's model in the status line.
class RebootProgress final : public ShownWindow {
  public:
    RebootProgress(StatusLine& status, frmWaitForReboot& form)
        : mStatus(status),
          mForm(form),
          mChanged(form.ProgressBar1.Changed.Connect([this] { Show(); })) {
        Show();
    }
    ~RebootProgress() override { mStatus.Clear(); }
    RebootProgress(const RebootProgress&) = delete;
    RebootProgress& operator=(const RebootProgress&) = delete;

  private:
    void Show() {
        const ProgressBarModel& bar = mForm.ProgressBar1;
        mStatus.Show(frmWaitForReboot::Caption, bar.Value() * 100 / bar.Max());
    }

    StatusLine& mStatus;
    frmWaitForReboot& mForm;
    Subscription mChanged;
};

void PickProtocol(frmBinaryTransfer& form, std::int16_t protocol) {
    const auto& entries = form.cmbProtocol.Entries();
    const auto found = std::ranges::find(entries, std::int32_t{protocol}, &ListModel::Entry::value);
    if (found != entries.end())
        form.cmbProtocol.Pick(static_cast<std::int32_t>(found - entries.begin()));
}

} // namespace

void ConsoleForms::ShowModal(frmCommSettings& form) {
    mAsker.Tell("There is no settings dialog here: choose the port with --port, see \"qnctl "
                "ports\"; \"qnctl connect\" finds its settings.");
    form.Unload(UnloadMode::ControlMenu);
}

void ConsoleForms::ShowModal(frmFunctionKeysSetup& form) {
    mAsker.Tell("There is no function keys dialog here: see \"qnctl macros\".");
    form.Unload(UnloadMode::ControlMenu);
}

void ConsoleForms::ShowModal(frmBinaryTransfer& form) {
    if (mProtocol) PickProtocol(form, *mProtocol);
    form.cmdBrowse.Click();
    if (form.Filename().empty())
        mAsker.Tell("No file was chosen; nothing is transferred.");
    else
        form.cmdButton[0].Click();
    form.Unload(UnloadMode::ControlMenu); // for a form that its button did not close
    if (form.Accepted()) mStatus.Show("Waiting for the printer's side of the transfer");
}

std::unique_ptr<ShownWindow> ConsoleForms::Show(frmWaitForReboot& form) {
    return std::make_unique<RebootProgress>(mStatus, form);
}

} // namespace qncomm

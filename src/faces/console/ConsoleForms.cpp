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
        mStatus.Show(mForm.Caption(), bar.Value() * 100 / bar.Max());
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

// A row for each form: how it is shown here. One without a row is declined.
ConsoleForms::ConsoleForms(ConsoleAsker& asker, StatusLine& status)
    : mAsker(asker), mStatus(status) {
    mModal.Add<frmCommSettings>([this](frmCommSettings& form) {
        Decline(form, "There is no settings dialog here: choose the port with --port, see \"qnctl "
                      "ports\"; \"qnctl connect\" finds its settings.");
    });
    mModal.Add<frmFunctionKeysSetup>([this](frmFunctionKeysSetup& form) {
        Decline(form, "There is no function keys dialog here: see \"qnctl macros\".");
    });
    mModal.Add<frmBinaryTransfer>([this](frmBinaryTransfer& form) { AskForFile(form); });
    mModeless.Add<frmWaitForReboot>(
        [this](frmWaitForReboot& form) { return std::make_unique<RebootProgress>(mStatus, form); });
}

void ConsoleForms::ShowModal(FormModel& form) {
    if (const auto* show = mModal.Find(form))
        (*show)(form);
    else
        Decline(form, "There is no dialog \"" + form.Caption() + "\" here.");
}

std::unique_ptr<ShownWindow> ConsoleForms::Show(FormModel& form) {
    const auto* show = mModeless.Find(form);
    return show != nullptr ? (*show)(form) : nullptr;
}

void ConsoleForms::Decline(FormModel& form, const std::string& instead) {
    mAsker.Tell(instead);
    form.Unload(UnloadMode::ControlMenu);
}

void ConsoleForms::AskForFile(frmBinaryTransfer& form) {
    if (mProtocol) PickProtocol(form, *mProtocol);
    form.cmdBrowse.Click();
    if (form.Filename().empty())
        mAsker.Tell("No file was chosen; nothing is transferred.");
    else
        form.cmdButton[0].Click();
    form.Unload(UnloadMode::ControlMenu); // for a form that its button did not close
    if (form.Accepted()) mStatus.Show("Waiting for the printer's side of the transfer");
}

} // namespace qncomm

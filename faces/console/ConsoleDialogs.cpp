#include "console/ConsoleDialogs.h"

#include "dialogs/frmWaitForReboot.h"

#include <ostream>

namespace qncomm {
namespace {

constexpr std::int16_t NotAccepted = 2;

/// Shows the reboot wait's model in the status line.
class RebootProgress final : public ShownWindow {
  public:
    RebootProgress(StatusLine& status, MessageLoop& loop)
        : mStatus(status),
          mForm(loop),
          mChanged(mForm.ProgressBar1.Changed.Connect([this] { Show(); })) {
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
    frmWaitForReboot mForm;
    Subscription mChanged;
};

} // namespace

std::int16_t ConsoleDialogs::ShowCommSettings(clsDataLink& /*link*/) {
    mStatus.Clear();
    mErr << "There is no settings dialog here: choose the port with --port, see \"qnctl ports\"; "
            "\"qnctl connect\" finds its settings."
         << std::endl;
    return NotAccepted;
}

std::unique_ptr<ShownWindow> ConsoleDialogs::ShowWaitForReboot() {
    return std::make_unique<RebootProgress>(mStatus, mLoop);
}

} // namespace qncomm

#include "dialogs/Dialogs.h"

#include "dialogs/frmCommSettings.h"
#include "dialogs/frmWaitForReboot.h"

namespace qncomm {
namespace {

/// The form with its window; the window goes first.
class RebootWindow : public ShownWindow {
  public:
    RebootWindow(MessageLoop& loop, FormWindows& windows)
        : mForm(loop), mWindow(windows.Show(mForm)) {}

  private:
    frmWaitForReboot mForm;
    std::unique_ptr<ShownWindow> mWindow;
};

} // namespace

std::int16_t Dialogs::ShowCommSettings(clsDataLink& link) {
    frmCommSettings form(link);
    return form.ShowMe(mWindows);
}

std::unique_ptr<ShownWindow> Dialogs::ShowWaitForReboot() {
    return std::make_unique<RebootWindow>(mLoop, mWindows);
}

} // namespace qncomm

#include "dialogs/frmWaitForReboot.h"

#include "common/QNError.h"

namespace qncomm {

frmWaitForReboot::frmWaitForReboot(MessageLoop& loop)
    : FormModel("Printer Reboot..."),
      mTimer1(loop.StartTimer(TimerInterval, [this] { Timer1_Timer(); })) {}

void frmWaitForReboot::Timer1_Timer() {
    try {
        ProgressBar1.SetValue(ProgressBar1.Value() + 1);
    } catch (const QNError&) { // NOLINT(bugprone-empty-catch): full, and stays so
    }
}

} // namespace qncomm

#pragma once

#include "common/ControlModels.h"
#include "common/MessageLoop.h"
#include "dialogs/FormModel.h"

#include <memory>

namespace qncomm {

/// The small modeless window that is shown while the printer restarts. Its bar creeps forward once
/// a second so that the user sees that something waits; it neither measures nor controls the
/// reboot, has no buttons and never closes itself.
class frmWaitForReboot : public FormModel {
  public:
    /// How often the bar moves, in ms.
    static constexpr std::int32_t TimerInterval = 1000;

    /// Runs its timer on the loop, which must outlive it.
    explicit frmWaitForReboot(MessageLoop& loop);

    /// Seconds so far, 0 to 30; stays full from then on.
    ProgressBarModel ProgressBar1{0, 30};

  private:
    void Timer1_Timer();

    std::unique_ptr<RunningTimer> mTimer1;
};

} // namespace qncomm

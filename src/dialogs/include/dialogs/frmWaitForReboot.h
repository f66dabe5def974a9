#pragma once

#include "common/ControlModels.h"
#include "common/MessageLoop.h"

#include <memory>
#include <string_view>

namespace qncomm {

/// The small modeless window that is shown while the printer restarts. Its bar creeps forward once
/// a second so that the person sees that something waits; it neither measures nor controls the
/// reboot, has no buttons and closes itself never.
class frmWaitForReboot {
  public:
    static constexpr std::string_view Caption = "Printer Reboot...";
    static constexpr std::int32_t TimerInterval = 1000; ///< ms

    /// Runs its timer on the loop, which outlives it.
    explicit frmWaitForReboot(MessageLoop& loop);

    /// 0 to 30; stays full from then on.
    ProgressBarModel ProgressBar1{0, 30};

  private:
    void Timer1_Timer();

    std::unique_ptr<RunningTimer> mTimer1;
};

} // namespace qncomm

#pragma once

#include "common/MessageLoop.h"
#include "dialogs/FormWindows.h"
#include "link/LinkDialogs.h"

namespace qncomm {

/// Makes the forms that the link asks for and has them shown. The loop and the windows must outlive
/// it.
class Dialogs : public LinkDialogs {
  public:
    /// Forms run their timers on the loop and are shown by the windows.
    Dialogs(MessageLoop& loop, FormWindows& windows) : mLoop(loop), mWindows(windows) {}

    /// Returns when the settings form has closed: 1 when it was accepted, 2 otherwise.
    std::int16_t ShowCommSettings(clsDataLink& link) override;
    /// The form and its window last as long as the returned object. Never null.
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override;

  private:
    MessageLoop& mLoop;
    FormWindows& mWindows;
};

} // namespace qncomm

#pragma once

#include "common/MessageLoop.h"
#include "dialogs/FormWindows.h"
#include "link/LinkDialogs.h"

namespace qncomm {

/// Makes the forms that the link asks for and has them shown. The loop and the windows outlive it.
class Dialogs : public LinkDialogs {
  public:
    Dialogs(MessageLoop& loop, FormWindows& windows) : mLoop(loop), mWindows(windows) {}

    std::int16_t ShowCommSettings(clsDataLink& link) override;
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override;

  private:
    MessageLoop& mLoop;
    FormWindows& mWindows;
};

} // namespace qncomm

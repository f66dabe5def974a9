#pragma once

#include "common/MessageLoop.h"
#include "console/StatusLine.h"
#include "link/LinkDialogs.h"

#include <iosfwd>

namespace qncomm {

/// What the link needs shown, at a terminal: there is no settings dialog, which is said together
/// with what to do instead; the reboot wait is a status line that creeps forward.
class ConsoleDialogs final : public LinkDialogs {
  public:
    /// All outlive the object and the windows that it shows.
    ConsoleDialogs(std::ostream& err, StatusLine& status, MessageLoop& loop)
        : mErr(err), mStatus(status), mLoop(loop) {}

    std::int16_t ShowCommSettings(clsDataLink& link) override;
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override;

  private:
    std::ostream& mErr;
    StatusLine& mStatus;
    MessageLoop& mLoop;
};

} // namespace qncomm

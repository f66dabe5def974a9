#pragma once

#include "OperationLoop.h"
#include "control/QNComm.h"
#include "dialogs/Dialogs.h"
#include "link/clsDataLink.h"
#include "printer/clsQuorin.h"

#include <memory>
#include <utility>
#include <vector>

namespace qncomm {

/// Link and command layer of a control that runs. Shared with every operation on the stack, so that
/// a host may destroy the control in an event. The command layer is destroyed before the link.
struct QNComm::Members {
    Members(const ControlServices& services, std::shared_ptr<void> kept,
            std::int32_t firstGeneration)
        : keep(std::move(kept)),
          loop(services.loop),
          dialogs(services.loop, services.forms),
          link(LinkHost{loop, services.desktop, dialogs, services.hostFiles, firstGeneration,
                        services.link}),
          quorin(link, services.desktop, services.hostFiles) {}

    std::shared_ptr<void> keep; ///< destroyed last
    OperationLoop loop;
    Dialogs dialogs;
    clsDataLink link;
    clsQuorin quorin;
    std::vector<Subscription> relays;
    bool released = false; ///< the control has given them up
    int events = 0;        ///< how many of their events are being relayed
    int operations = 0;    ///< how many of their operations are running
};

/// An operation of the control while it runs.
class QNComm::Operation {
  public:
    explicit Operation(std::shared_ptr<Members> members) : mMembers(std::move(members)) {
        if (mMembers->operations == 0) mMembers->quorin.ForgetFormerPrinter();
        ++mMembers->operations;
    }
    ~Operation() {
        if (--mMembers->operations == 0) mMembers->loop.Forget();
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    clsQuorin& operator*() const { return mMembers->quorin; }
    clsQuorin* operator->() const { return &mMembers->quorin; }
    clsDataLink& Link() const { return mMembers->link; }

  private:
    std::shared_ptr<Members> mMembers;
};

/// Puts the screen's pointer back to the default at the end of an operation, however it ends.
class EndBusy {
  public:
    EndBusy() = default;
    ~EndBusy();
    EndBusy(const EndBusy&) = delete;
    EndBusy& operator=(const EndBusy&) = delete;
};

} // namespace qncomm

#include "qt/ActionGuard.h"

#include "common/QNError.h"

#include <utility>

namespace qncomm {

ActionGuard::ActionGuard(Desktop& desktop, Stop stop)
    : mDesktop(&desktop), mStop(std::move(stop)) {}

void ActionGuard::Run(const std::function<void()>& action) const {
    // The guard may have been destroyed when the action returns.
    Desktop& desktop = *mDesktop;
    const Stop stop = mStop;
    try {
        action();
    } catch (const QNError& error) {
        desktop.ShowMsgBox(
            {.text = error.Description(), .icon = MsgBoxIcon::Critical, .title = {}});
    } catch (...) {
        if (stop) stop(std::current_exception());
    }
}

} // namespace qncomm

#include "console/ConsoleHost.h"

#include "control/QNComm.h"

namespace qncomm {

void ConsoleHost::SetVisible(bool bVisible) {
    if (mControl == nullptr) return;
    if (bVisible)
        mControl->UserControl_Show();
    else
        mControl->UserControl_Hide();
}

void ConsoleHost::CaptureFailed(const std::string& sPath, const std::string& sReason) {
    mCaptureLost = true;
    mAsker.Tell("The capture to " + sPath + " has ended: " + sReason + ".");
}

} // namespace qncomm

#pragma once

#include "link/LinkDialogs.h"

#include <memory>

namespace qncomm {

class frmBinaryTransfer;
class frmCommSettings;
class frmFunctionKeysSetup;
class frmWaitForReboot;

/// Shows forms as windows. A face implements it.
class FormWindows {
  public:
    virtual ~FormWindows() = default;

    /// Shows the form and returns when it has closed (or at once when there is no place to show it:
    /// the form then counts as closed by its close box). Passes on what the form's handlers raise.
    virtual void ShowModal(frmCommSettings& form) = 0;
    virtual void ShowModal(frmFunctionKeysSetup& form) = 0;
    virtual void ShowModal(frmBinaryTransfer& form) = 0;

    /// Shows the window without blocking, until the returned object goes; the form outlives it.
    /// When the person closes the window, only the window goes. May return nothing.
    virtual std::unique_ptr<ShownWindow> Show(frmWaitForReboot& form) = 0;
};

} // namespace qncomm

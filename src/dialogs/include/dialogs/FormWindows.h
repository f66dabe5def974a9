#pragma once

#include "dialogs/FormModel.h"
#include "link/LinkDialogs.h"

#include <memory>

namespace qncomm {

/// Shows forms, whatever their class. A face implements it, with a FormTable of the forms that it
/// has a window for.
class FormWindows {
  public:
    virtual ~FormWindows() = default;

    /// Shows the form and returns when it has closed. Where there is no window for it, it counts as
    /// closed by its close box at once. Passes on what the form's handlers raise.
    virtual void ShowModal(FormModel& form) = 0;

    /// Shows the form without blocking, until the returned object is destroyed; the form must
    /// outlive that object. When the user closes the window, only the window goes. Null where there
    /// is no window for it.
    [[nodiscard]] virtual std::unique_ptr<ShownWindow> Show(FormModel& form) = 0;
};

} // namespace qncomm

#pragma once

#include "common/Desktop.h"

#include <exception>
#include <functional>

namespace qncomm {

/// Runs what the person starts at a widget. Nothing that it raises gets into the toolkit's event
/// loop: the system's errors are told in a message box, anything else (the program's end, no
/// memory) goes to whoever can unwind.
///
/// The guard itself may go while an action runs.
class ActionGuard {
  public:
    using Stop = std::function<void(std::exception_ptr)>;

    /// The desktop outlives every action. stop is called with what is no QNError; without one that
    /// is dropped, which ends the action and nothing else.
    explicit ActionGuard(Desktop& desktop, Stop stop = {});

    void Run(const std::function<void()>& action) const;

  private:
    Desktop* mDesktop;
    Stop mStop;
};

} // namespace qncomm

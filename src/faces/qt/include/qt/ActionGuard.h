#pragma once

#include "common/Desktop.h"

#include <exception>
#include <functional>

namespace qncomm {

/// Runs what the user starts at a widget. No exception of it gets into the toolkit's event
/// loop: the system's errors are shown in a message box, anything else (the program's end, no
/// memory) goes to the handler that can unwind.
///
/// The guard itself may be destroyed while an action runs.
class ActionGuard {
  public:
    /// Receives an exception that is no QNError.
    using Stop = std::function<void(std::exception_ptr)>;

    /// The desktop must outlive every action. stop is called with an exception that is not a
    /// QNError; without stop it is dropped, and only the action ends.
    explicit ActionGuard(Desktop& desktop, Stop stop = {});

    /// Runs the action; never throws. Nothing is touched afterwards if the action destroyed the
    /// guard.
    void Run(const std::function<void()>& action) const;

  private:
    Desktop* mDesktop;
    Stop mStop;
};

} // namespace qncomm

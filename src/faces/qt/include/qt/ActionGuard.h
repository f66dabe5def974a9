#pragma once

#include "common/Desktop.h"

#include <exception>
#include <functional>

namespace qncomm {

/// Runs what the user starts at a widget. No exception of it gets into the toolkit's event
/// loop: the system's errors are told in a message box, anything else (the program's end, no
/// memory) goes to the handler that can unwind.
///
/// The guard itself may go while an action runs.
class ActionGuard {
  public:
    /// Receives an exception that is no QNError.
    using Stop = std::function<void(std::exception_ptr)>;

    /// The desktop must outlive every action. stop is called with what is no QNError; without one
    /// that is dropped, which ends the action and nothing else.
    explicit ActionGuard(Desktop& desktop, Stop stop = {});

    /// Runs the action; never throws. Nothing is touched afterwards if the action destroyed the
    /// guard.
    void Run(const std::function<void()>& action) const;

  private:
    Desktop* mDesktop;
    Stop mStop;
};

} // namespace qncomm

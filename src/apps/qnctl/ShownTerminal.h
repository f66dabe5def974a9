#pragma once

#include "Session.h"

#include <functional>
#include <string_view>

namespace qnctl {

/// The control shown, which keeps the port open for its terminal; what the printer says goes to the
/// grid, and to whoever follows. Hidden again however the work in between ends.
class ShownTerminal {
  public:
    using Follower = std::function<void(std::string_view)>;

    /// The session outlives the object.
    ShownTerminal(Session& session, Follower follower);
    ~ShownTerminal();
    ShownTerminal(const ShownTerminal&) = delete;
    ShownTerminal& operator=(const ShownTerminal&) = delete;

  private:
    Session& mSession;
    Follower mFollower;
};

} // namespace qnctl

#pragma once

#include "Session.h"

#include "common/Event.h"

#include <functional>
#include <string_view>

namespace qnctl {

/// The control shown, which keeps the port open for its terminal; what the printer says goes to its
/// viewport, and to the follower if there is one. Hidden again however the work in between ends.
class ShownTerminal {
  public:
    using Follower = std::function<void(std::string_view)>;

    /// The session must outlive the object. The follower may be empty.
    ShownTerminal(Session& session, Follower follower);
    ~ShownTerminal();
    ShownTerminal(const ShownTerminal&) = delete;
    ShownTerminal& operator=(const ShownTerminal&) = delete;

  private:
    Session& mSession;
    qncomm::Subscription mReceived;
};

} // namespace qnctl

#include "ShownTerminal.h"

#include <utility>

namespace qnctl {

ShownTerminal::ShownTerminal(Session& session, Follower follower) : mSession(session) {
    mSession.Control().UserControl_Show(); // may raise: nothing is to be undone then
    if (follower) mReceived = mSession.Assembly().Viewport().Received.Connect(std::move(follower));
}

ShownTerminal::~ShownTerminal() {
    mReceived.Reset();
    mSession.Control().UserControl_Hide();
}

} // namespace qnctl

#include "ShownTerminal.h"

#include <utility>

namespace qnctl {

ShownTerminal::ShownTerminal(Session& session, Follower follower)
    : mSession(session), mFollower(std::move(follower)) {
    mSession.Control().UserControl_Show(); // may raise: the sink is set when nothing can
    mSession.Serial().SetTerminalSink([this](std::string_view text) {
        mSession.Assembly().Grid().Write(text);
        if (mFollower) mFollower(text);
    });
}

ShownTerminal::~ShownTerminal() {
    qncomm::Terminal& grid = mSession.Assembly().Grid();
    mSession.Serial().SetTerminalSink([&grid](std::string_view text) { grid.Write(text); });
    mSession.Control().UserControl_Hide();
}

} // namespace qnctl

#include "CancelledTransfer.h"

#include "Session.h"

namespace qnctl {

std::unique_ptr<qncomm::RunningTimer> CancelWithTheProgram(Session& session) {
    constexpr std::int32_t lookMs = 50;
    return session.Loop().StartTimer(lookMs, [&session] {
        if (session.Interrupted()) session.Assembly().CancelTransfer();
    });
}

} // namespace qnctl

#include "LoadProgress.h"

#include "Session.h"
#include "TransferLines.h"

namespace qnctl {
namespace {

/// A line for each tenth of a load, for whoever reads a pipe.
qncomm::TransferProgress::Report TenthsAsLines(Session& session) {
    constexpr std::int32_t tenth = 10;
    return [&session, told = 0](const qncomm::TransferReading& reading) mutable {
        const std::int32_t now = reading.percent.value_or(0) / tenth * tenth;
        if (now <= told) return;
        told = now;
        const std::string rate = qncomm::RateText(reading);
        session.Status().Show(std::to_string(now) + " %" + (rate.empty() ? "" : ", " + rate));
    };
}

} // namespace

Outcome CarryLoad(Session& session, const std::function<void()>& load) {
    const bool json = session.Out().IsJson();
    if (!json) session.ShowEveryStatus();
    qncomm::TransferProgress& progress =
        session.FollowTransfer(json ? ProgressLines(session) : TenthsAsLines(session));
    load();
    if (json) session.Out().Document(ResultLine(progress));
    return {};
}

std::string StillDeaf(Session& session) {
    const std::int32_t seconds = (session.DeafMs() + 500) / 1000;
    if (seconds == 0) return {};
    return "The printer stays deaf for up to " + std::to_string(seconds)
           + " s: it waits for the rest of a load.";
}

} // namespace qnctl

#include "TransferLines.h"

#include "Session.h"

#include <optional>

namespace qnctl {
namespace {

/// What is not known is null, so that every line has the same members.
template <typename Number>
Json OrNull(const std::optional<Number>& value) {
    return value ? Json(*value) : Json(nullptr);
}

} // namespace

qncomm::TransferProgress::Report ProgressLines(Session& session) {
    if (!session.Out().IsJson() || session.Options().quiet) return {};
    return [&session](const qncomm::TransferReading& reading) {
        session.Out().Document({{"progress", OrNull(reading.percent)},
                                {"bytes", reading.bytes},
                                {"size", OrNull(reading.size)},
                                {"rate", OrNull(reading.rate)},
                                {"secondsLeft", OrNull(reading.secondsLeft)}});
    };
}

Json ResultLine(const qncomm::TransferProgress& progress) {
    const qncomm::TransferReading whole = progress.Whole();
    return {{"done", true},
            {"bytes", whole.bytes},
            {"ms", progress.ElapsedMs()},
            {"rate", OrNull(whole.rate)}};
}

} // namespace qnctl

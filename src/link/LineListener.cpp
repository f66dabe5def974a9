#include "LineListener.h"

#include "LinkState.h"
#include "common/StopWatch.h"
#include "common/Wait.h"

namespace qncomm {
namespace {

/// More than is needed to see what it is.
constexpr std::size_t EnoughBytes = 4096;

} // namespace

HeardLine ListenToLine(LinkState& state, std::int32_t quietMs, std::int32_t mostMs) {
    HeardLine heard;
    const std::int32_t errorsBefore = state.Serial().LineErrorCount();
    Wait wait(state.host.loop, {.wholeMs = mostMs, .silenceMs = quietMs});
    StopWatch quiet(state.host.loop);
    state.Await(wait, [&] {
        const std::string chunk = state.Serial().Read();
        if (!chunk.empty()) quiet.Restart();
        wait.Came(chunk.size());
        heard.bytes += chunk;
        return heard.bytes.size() >= EnoughBytes || !state.Serial().PortOpen();
    });
    heard.lineErrors = state.Serial().LineErrorCount() - errorsBefore;
    heard.silentMs = quiet.ElapsedMs();
    return heard;
}

void DropTalk(LinkState& state, std::int32_t ms) {
    Wait wait(state.host.loop, {.wholeMs = ms});
    state.Await(wait, [&] {
        state.Serial().Read();
        return !state.Serial().PortOpen();
    });
}

} // namespace qncomm

#include "CancelledTransfer.h"

#include "Session.h"

#include "common/Numbers.h"
#include "common/StopWatch.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace qnctl {
namespace {

/// What a printer that takes its bytes at once needs to come to its prompt.
constexpr std::int32_t PromptMs = 400;
/// Longer than this no line is waited for that still carries something.
constexpr std::int32_t MostMs = 15'000;

/// How long a printer may say nothing while it takes what is on its way: two thousand bytes at the
/// port's rate, the most that travels between two acknowledgements on a slow line.
std::int32_t SilenceMs(Session& session) {
    constexpr double bitsOnTheWay = 2000 * 11;
    const double baud = std::max(qncomm::Val(session.Link().Baudrate()), 300.0);
    return PromptMs + static_cast<std::int32_t>(1000 * bitsOnTheWay / baud);
}

} // namespace

std::unique_ptr<qncomm::RunningTimer> CancelWithTheProgram(Session& session) {
    constexpr std::int32_t lookMs = 50;
    return session.Loop().StartTimer(lookMs, [&session] {
        if (session.Interrupted()) session.Serial().SetTransferState(qncomm::TransferAborting);
    });
}

void AwaitPrompt(Session& session, bool bMoving) {
    constexpr std::string_view prompt = "Ok\r\n";
    qncomm::PDQComm& serial = session.Serial();
    serial.SetReceiveThreshold(0); // what comes is read here
    const std::int32_t silenceMs = bMoving ? SilenceMs(session) : PromptMs;
    const qncomm::StopWatch whole(session.Loop());
    qncomm::StopWatch silence(session.Loop());
    std::string text = serial.Read();
    while (text.find(prompt) == std::string::npos) {
        const std::int32_t left =
            std::min(silence.UntilExceeds(silenceMs), whole.UntilExceeds(MostMs));
        if (left == 0 || !serial.PortOpen()) return;
        session.Loop().Yield(left);
        const std::string more = serial.Read();
        if (!more.empty()) silence.Restart();
        text += more;
    }
}

} // namespace qnctl

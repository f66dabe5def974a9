// Asking now and then whether the printer is still at its prompt, for hosts that want it so. Nobody
// waits for the answer: it is taken out of what the terminal hears.

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/QNError.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view Question = "PRINT 0\r\n";
/// The echo and the answer.
constexpr std::string_view Expected = "PRINT 0\r\n0\r\nOk\r\n";
constexpr std::int32_t PatienceMs = 1000; ///< beyond the bytes' own time on the line
constexpr std::int32_t ShortestPollMs = 1000;

/// What a poll has on the line, both ways, in ms.
std::int32_t OnTheLineMs(const std::string& baudrate) {
    constexpr double bits = 11.0 * static_cast<double>(Question.size() + Expected.size());
    return ToInt32(1000 * bits / std::max(Val(baudrate), 300.0)) + 1;
}

} // namespace

std::int32_t LinkState::PollInterval() const {
    constexpr std::int32_t share = 100; // a hundredth of the line at the most
    return std::max(share * OnTheLineMs(baudrate), ShortestPollMs);
}

void LinkState::SchedulePolls() {
    AbandonPoll();
    pollTimer.reset();
    if (!host.options.polled || !terminalHeld) return;
    pollEveryMs = PollInterval();
    pollTimer = host.loop.StartTimer(pollEveryMs, [this] { Poll(); });
}

bool LinkState::MayPoll() const {
    const bool ours = terminalHeld && useCount == 1 && innermost == nullptr && hostCalls == 0;
    return ours && Serial().PortOpen() && !IsExclusive() && !deafSince
           && Serial().TransmitCount() == 0
           && live.IsIdleSince(host.loop.NowMs() - pollEveryMs / 2);
}

void LinkState::Poll() {
    if (pollEveryMs != PollInterval()) {
        SchedulePolls();
        return;
    }
    if (pollLimit != nullptr || serial == nullptr || !MayPoll()) return;
    pollHeard.clear();
    pollLimit = host.loop.StartTimer(OnTheLineMs(baudrate) + PatienceMs, [this] { EndPoll(); });
    try {
        Serial().Write(Question);
    } catch (const QNError&) { // the port is on its way out, and says so itself
        AbandonPoll();
    }
}

bool LinkState::TakeForPoll(const std::string& text) {
    if (pollLimit == nullptr) return false;
    pollHeard += text;
    if (pollHeard.find(Expected) != std::string::npos) EndPoll();
    return true;
}

void LinkState::EndPoll() {
    pollLimit.reset();
    std::string heard = std::exchange(pollHeard, {});
    const std::size_t at = heard.find(Expected);
    if (at != std::string::npos) {
        heard.erase(at, Expected.size());
        if (!heard.empty()) Deliver(heard); // what was typed, or what a program said, meanwhile
        live.Printer(PrinterAtPrompt, LearntReply);
    } else if (heard.empty()) {
        live.Printer(PrinterSilent, LearntSilence);
    } else {
        Deliver(heard);
    }
}

void LinkState::AbandonPoll() {
    pollLimit.reset();
    pollHeard.clear();
}

} // namespace qncomm

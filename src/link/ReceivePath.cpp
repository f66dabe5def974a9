// What the serial control reports: received text into the receive buffer or the terminal, a device
// that went away.

#include "LinkState.h"
#include "common/StopWatch.h"
#include "common/Text.h"

namespace qncomm {
namespace {

constexpr std::int32_t HoldForLineFeed = 50;
constexpr std::size_t ReceiveLimit = std::size_t{16} * 1024 * 1024;

} // namespace

void LinkState::OnSerialEvent(SerialEvent event) {
    switch (event) {
    case SerialEventReceive:
        OnReceive();
        break;
    case SerialEventTransfer:
        OnTransfer();
        break;
    case SerialEventPortLost:
        OnPortLost();
        break;
    default:
        break; // line errors show in the text
    }
}

void LinkState::OnReceive() {
    std::string text;
    const StopWatch watch(host.loop);
    for (;;) {
        const std::string chunk = Serial().Read();
        if (!chunk.empty()) {
            text += chunk;
            if (!text.ends_with('\r')) break;
        }
        // A CR alone: its line feed may be on its way, and the pair should not be taken apart.
        const std::int32_t left = watch.UntilExceeds(HoldForLineFeed);
        if (left == 0 || !text.ends_with('\r')) break;
        if (!Serial().WaitForReceive(left)) break; // a lost port waits for nothing
    }
    if (text.empty()) return;
    ++arrivals;
    const bool endsInCr = text.ends_with('\r');
    if (endedInCr && text.front() == '\n') text.erase(0, 1);
    endedInCr = endsInCr;
    Deliver(NormalizeLineEnds(text));
}

void LinkState::Deliver(const std::string& text) {
    const bool toTerminal = Serial().ReceiveMode() != ReceiveToLink;
    if (toTerminal && TakeForPoll(text)) return;
    if (toTerminal) {
        Serial().WriteTerminal(text);
    } else if (received.size() + text.size() > ReceiveLimit) {
        receiveOverflow = true;
    } else {
        received += text;
    }
    live.Heard(text, toTerminal);
}

} // namespace qncomm

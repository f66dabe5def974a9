// What the serial control reports: received text into the receive buffer or the terminal, a device
// that went away.

#include "LinkState.h"
#include "common/Text.h"

namespace qncomm {
namespace {

constexpr std::int32_t HoldForLineFeed = 50;

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
    std::string text = Serial().Read();
    // A CR alone: its line feed may be on its way, and the pair should not be taken apart.
    bool more = true;
    Wait wait(host.loop, {.wholeMs = HoldForLineFeed});
    wait.Until([&] { return !more || !text.ends_with('\r'); },
               [&](std::int32_t ms) {
                   more = Serial().WaitForReceive(ms); // a lost port waits for nothing
                   text += Serial().Read();
               });
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
    } else if (received.size() + text.size() > MostReplyBytes) {
        receiveOverflow = true;
    } else {
        received += text;
    }
    live.Heard(text, toTerminal);
}

} // namespace qncomm

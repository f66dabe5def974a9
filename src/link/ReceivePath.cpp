// What the serial control reports: received text into the receive buffer or the terminal, a device
// that went away.

#include "common/StopWatch.h"
#include "common/Text.h"
#include "link/clsDataLink.h"

namespace qncomm {
namespace {

constexpr std::int32_t HoldForLineFeed = 50;
constexpr std::size_t ReceiveLimit = std::size_t{16} * 1024 * 1024;

} // namespace

void clsDataLink::OnSerialEvent(SerialEvent event) {
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

void clsDataLink::OnReceive() {
    std::string text;
    const StopWatch watch(mHost.loop);
    for (;;) {
        const std::string chunk = Serial().Read();
        if (!chunk.empty()) {
            text += chunk;
            if (!text.ends_with('\r')) break;
        }
        // A CR alone: its line feed may be on its way, and the pair should not be taken apart.
        const std::int32_t left = watch.UntilExceeds(HoldForLineFeed);
        if (left == 0 || !text.ends_with('\r')) break;
        Serial().WaitForReceive(left);
    }
    if (text.empty()) return;
    const bool endsInCr = text.ends_with('\r');
    if (mEndedInCr && text.front() == '\n') text.erase(0, 1);
    mEndedInCr = endsInCr;
    Deliver(NormalizeLineEnds(text));
}

void clsDataLink::Deliver(const std::string& text) {
    if (Serial().ReceiveMode() != ReceiveToLink) {
        Serial().WriteTerminal(text);
    } else if (mReceived.size() + text.size() > ReceiveLimit) {
        mReceiveOverflow = true;
    } else {
        mReceived += text;
    }
}

} // namespace qncomm

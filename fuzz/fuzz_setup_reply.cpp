// The serial settings in a printer's setup as a search reads them: however much of a reply has
// come, more of it takes back nothing that is complete, and no setting comes out that the link
// would not accept.

#include "Choices.h"
#include "PortSettings.h"
#include "SetupReply.h"

#include <string>

namespace qncomm::fuzz {
namespace {

void Check(Choices choices) {
    const auto channel = static_cast<std::int16_t>(choices.Next() % 4);
    const std::string command = choices.Next() % 2 == 0 ? "SETUP WRITE\"uart1:\"" : "S";
    const std::size_t first = choices.NextWord();
    const std::string_view text = choices.Rest();

    const auto early = ProgressOfSetup(text.substr(0, first), command, channel);
    const auto late = ProgressOfSetup(text, command, channel);
    if (early == SetupProgress::Complete) Promise(late == SetupProgress::Complete);
    if (early != SetupProgress::NotBegun) Promise(late != SetupProgress::NotBegun);
    const auto reply = ParseSetupReply(text, channel);
    if (!reply) return;
    Promise(NormalBaudrate(reply->baudrate) == reply->baudrate);
    Promise(NormalParity(reply->parity) == reply->parity);
    Promise(NormalDatabits(reply->databits) == reply->databits);
    Promise(NormalStopbits(reply->stopbits) == reply->stopbits);
    Promise(reply->flowcontrol >= 0 && reply->flowcontrol <= 3);
}

} // namespace
} // namespace qncomm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Check({data, size});
    return 0;
}

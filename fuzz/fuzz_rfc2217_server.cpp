// Whatever a host sends: the server survives it, its answers stay in proportion, its line stays one
// that exists, and it hears the same in whatever pieces it comes.
#include "endpoints/ComPortServer.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

/// What the host did, in a form that compares; bytes in one piece or two are the same.
std::string Did(const std::vector<qnsim::HostAction>& actions) {
    std::string did;
    for (const qnsim::HostAction& action : actions) {
        if (action.kind == qnsim::HostAction::Kind::Bytes) {
            did += action.text;
            continue;
        }
        did += "<" + std::to_string(static_cast<int>(action.kind)) + " "
               + std::to_string(*action.format.baud) + *action.format.parity
               + std::to_string(*action.format.dataBits) + std::to_string(*action.format.stopBits)
               + std::to_string(action.dtr) + std::to_string(action.rts) + ">";
    }
    return did;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < 1) return 0;
    const std::string all(bytes + 1, bytes + size);
    const std::string_view talk = all;
    qnsim::ComPortServer whole;
    const std::string did = Did(whole.Receive(talk));
    const qnsim::LineFormat& format = whole.Format();
    Require(*format.baud >= 300 && *format.baud <= 115200);
    Require(*format.dataBits == 7 || *format.dataBits == 8);
    Require(*format.stopBits == 1 || *format.stopBits == 2);
    Require(std::string_view("neoms").find(*format.parity) != std::string_view::npos);
    constexpr std::size_t longestAnswer = 32; // to the six bytes of a request
    Require(whole.Output().size() <= (talk.size() / 3 + 1) * longestAnswer);
    const std::size_t cut = bytes[0] * talk.size() / 256;
    qnsim::ComPortServer pieces;
    const std::string first = Did(pieces.Receive(talk.substr(0, cut)));
    Require(first + Did(pieces.Receive(talk.substr(cut))) == did);
    Require(pieces.Output() == whole.Output());
    whole.Send(talk);
    return 0;
}

#include "serial_testing/EchoChannel.h"

namespace qncomm::testing {

IoCount EchoChannel::Write(std::string_view bytes) {
    IoCount taken = ScriptedChannel::Write(bytes);
    Arrive(bytes.substr(0, taken.count));
    return taken;
}

ChannelFactory EchoChannels(ScriptedLine& line) {
    return [&line](const PortAddress&, Reactor& reactor) {
        return std::make_unique<EchoChannel>(reactor, line);
    };
}

} // namespace qncomm::testing

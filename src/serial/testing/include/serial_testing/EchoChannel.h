#pragma once

#include "serial_testing/ScriptedChannel.h"

namespace qncomm::testing {

/// A channel that gives back each byte written, as a line with its two wires joined does. It has
/// the switches of its line.
class EchoChannel final : public ScriptedChannel {
  public:
    using ScriptedChannel::ScriptedChannel;

    IoCount Write(std::string_view bytes) override;
};

/// Makes such a channel for every address; the line outlives what uses the factory.
ChannelFactory EchoChannels(ScriptedLine& line);

} // namespace qncomm::testing

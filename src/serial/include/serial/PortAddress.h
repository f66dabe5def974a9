#pragma once

#include "serial/ChannelKind.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// Where a port is. Compared by its text.
struct PortAddress {
    std::string text;                   ///< as it was written, without blanks around it
    const ChannelKind* kind = &TtyKind; ///< never null; see ChannelKind about its lifetime

    /// Whether both are written alike, letter for letter.
    bool operator==(const PortAddress& other) const { return text == other.text; }
};

/// What ParsePortAddress made of a text.
struct PortAddressResult {
    std::optional<PortAddress> address; ///< absent = refused
    std::string error;                  ///< says what was wrong and what would be right
};

/// Reads an address of one of these kinds, such as /dev/ttyUSB0 or tcp://host:port (an IPv6 number
/// in brackets). Does not look whether the device is there.
PortAddressResult ParsePortAddress(std::string_view sText,
                                   const ChannelKinds& kinds = SerialChannelKinds());

/// The port number in "COM3", "com3", "COM3:" or "3"; nothing for any other text or a number beyond
/// 16.
std::optional<std::int16_t> ParsePortNumber(std::string_view sText);

/// The name of a port number, "COM3" for 3: the key of its address in the settings, too.
std::string NameOfPort(std::int16_t iPort);

/// The channel that an address leads to, by its kind. The reactor outlives it.
std::unique_ptr<ByteChannel> MakeChannel(const PortAddress& address, Reactor& reactor);

/// What makes the channel for an address: MakeChannel, or a test's stand-in. Never returns null;
/// the reactor outlives the channel.
using ChannelFactory =
    std::function<std::unique_ptr<ByteChannel>(const PortAddress& address, Reactor& reactor)>;

} // namespace qncomm

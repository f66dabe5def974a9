#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The serial settings that a printer's setup names for one of its channels, in the form the link
/// stores them.
struct SetupReply {
    std::string baudrate;
    std::string parity;
    std::string databits;
    std::string stopbits;
    std::int32_t flowcontrol = 0;
};

/// Reads a setup listing for channel UARTn. Nothing unless it names each of the four serial values
/// exactly once, each with a value that the link accepts.
std::optional<SetupReply> ParseSetupReply(std::string_view text, std::int16_t channel);

} // namespace qncomm

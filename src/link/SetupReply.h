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

/// How far a reply to the setup's command has come.
enum class SetupProgress {
    NotBegun, ///< neither the command's echo nor an item of the channel was seen
    Listing,  ///< items are being listed
    Complete, ///< the listing has ended
    Foreign,  ///< what follows the beginning is no setup
};

/// Judges what was received since the command was sent, for channel UARTn. The reply begins with
/// the command's echo, or with the channel's first item from a printer that does not echo; what
/// stands before may be late replies to others.
SetupProgress ProgressOfSetup(std::string_view text, std::string_view command,
                              std::int16_t channel);

/// Reads a setup listing for channel UARTn. Nothing unless it names each of the four serial values
/// exactly once, each with a value that the link accepts.
std::optional<SetupReply> ParseSetupReply(std::string_view text, std::int16_t channel);

} // namespace qncomm

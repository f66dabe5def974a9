#pragma once

#include <cstdint>
#include <string>

namespace qncomm::terminal {

/// How a face shows the terminal. Kept here for its owner; it changes no cell.
struct TerminalAppearance {
    std::int32_t backColor = 0x00FFFFFF;  ///< 0x00BBGGRR, or negative for a colour of the system
    std::int32_t foreColor = 0x00000000;  ///< likewise
    std::string fontName = "Courier New"; ///< UTF-8; a face takes a similar one when it is missing
    float fontSize = 10.0F;               ///< points
    std::int16_t displayState = 0; ///< 0 not shown as a terminal; 5 the placeholder of design time

    /// Whether both show the same.
    bool operator==(const TerminalAppearance&) const = default;
};

} // namespace qncomm::terminal

#pragma once

#include <cstdint>
#include <string>

namespace qncomm::terminal {

/// How a face shows the terminal. Kept here for its owner; it changes no cell.
struct TerminalAppearance {
    std::int32_t backColor = 0x00FFFFFF; ///< 0x00BBGGRR, or negative for a colour of the system
    std::int32_t foreColor = 0x00000000;
    std::string fontName = "Courier New";
    float fontSize = 10.0F;        ///< points
    std::int16_t displayState = 0; ///< 0 not shown as a terminal; 5 the placeholder of design time

    bool operator==(const TerminalAppearance&) const = default;
};

} // namespace qncomm::terminal

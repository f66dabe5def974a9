#pragma once

#include <array>
#include <string_view>

namespace qncomm {

/// The names of the control characters; a name's place is its character's code. In macro texts they
/// stand between "<" and ">".
inline constexpr std::array<std::string_view, 32> ControlCharacterNames = {
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
    "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
    "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

} // namespace qncomm

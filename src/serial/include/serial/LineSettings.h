#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The settings of a serial line.
struct LineSettings {
    int baud = 9600;      ///< bits per second
    char parity = 'n';    ///< n, e, o, m or s
    int dataBits = 8;     ///< 7 or 8
    int stopBits = 1;     ///< 1 or 2
    bool xonXoff = false; ///< flow control by the bytes 0x11 and 0x13, both ways
    bool rtsCts = false;  ///< flow control by the lines RTS and CTS

    bool operator==(const LineSettings&) const = default;

    /// Bits that one byte takes on the line, start and stop bits included.
    int BitsPerByte() const { return 1 + dataBits + (parity == 'n' ? 0 : 1) + stopBits; }
};

/// The rates that a printer can be set to, in bits per second.
inline constexpr std::array<int, 10> BaudRates{300,  600,   1200,  2400,  4800,
                                               9600, 19200, 38400, 57600, 115200};

/// Reads "9600,N,8,1" (either case, blanks around the items allowed) into the first four settings;
/// nothing when it is no such text.
std::optional<LineSettings> ParseLineSettings(std::string_view sText);

/// The text form, such as "9600,N,8,1".
std::string TextOf(const LineSettings& settings);

} // namespace qncomm

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

enum class AddressKind { Tty, Tcp, Rfc2217, Simulator };

/// Where a port is. Compared by its text.
struct PortAddress {
    AddressKind kind = AddressKind::Tty;
    std::string text;      ///< as it was written
    std::string path;      ///< a tty's absolute path
    std::string host;      ///< a socket's host name or number
    std::string service;   ///< a socket's port number, as text
    std::string simulator; ///< what follows "sim:"

    bool operator==(const PortAddress& other) const { return text == other.text; }
};

struct PortAddressResult {
    std::optional<PortAddress> address; ///< absent = refused
    std::string error;                  ///< says what was wrong and what would be right
};

/// Reads an address: an absolute path (/dev/ttyUSB0), tcp://host:port or
/// rfc2217://host:port (an IPv6 number in brackets) or sim:MODEL?options. Does not look whether the
/// device is there.
PortAddressResult ParsePortAddress(std::string_view sText);

/// The port number in "COM3", "com3", "COM3:" or "3"; nothing for any other text or a number beyond
/// 16.
std::optional<std::int16_t> ParsePortNumber(std::string_view sText);

} // namespace qncomm

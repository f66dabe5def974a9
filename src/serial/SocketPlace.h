#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The two ends of "host:port".
struct SocketPlace {
    std::string host;    ///< a name or a number, without brackets
    std::string service; ///< the port's number in digits, without leading zeros
};

/// Reads "host:port" with a port of 1 to 65535 and an IPv6 number in brackets, behind a scheme such
/// as "tcp://" in either case; nothing when it is no such text.
std::optional<SocketPlace> ParseSocketPlace(std::string_view sAddress, std::string_view sScheme);

} // namespace qncomm

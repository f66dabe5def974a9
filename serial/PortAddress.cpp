#include "serial/PortAddress.h"

#include "SimulatorAddress.h"
#include "common/Text.h"

#include <charconv>

namespace qncomm {
namespace {

constexpr std::string_view TcpScheme = "tcp://";
constexpr std::string_view SimulatorScheme = "sim:";
constexpr std::int16_t HighestPort = 16;

std::optional<std::uint32_t> Digits(std::string_view text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

PortAddressResult Refused(std::string_view text, std::string_view reason) {
    return {std::nullopt, "\"" + std::string(text) + "\": " + std::string(reason)};
}

PortAddressResult ParseTcp(PortAddress address, std::string_view rest) {
    constexpr std::string_view form = "a socket is written tcp://host:port, with a port of 1 to "
                                      "65535 and an IPv6 number in brackets";
    const std::size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos) return Refused(address.text, form);
    std::string_view host = rest.substr(0, colon);
    const std::string_view service = rest.substr(colon + 1);
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (bracketed) host = host.substr(1, host.size() - 2);
    const auto port = Digits(service);
    if (host.empty() || host.find_first_of("/[]@ ") != std::string_view::npos)
        return Refused(address.text, form);
    if (!bracketed && host.find(':') != std::string_view::npos) return Refused(address.text, form);
    if (!port || *port < 1 || *port > 65535) return Refused(address.text, form);
    address.kind = AddressKind::Tcp;
    address.host = host;
    address.service = std::to_string(*port);
    return {std::move(address), {}};
}

} // namespace

PortAddressResult ParsePortAddress(std::string_view sText) {
    PortAddress address;
    address.text = Trim(sText);
    const std::string_view text = address.text;
    if (text.empty()) return Refused(text, "an address is missing");
    if (text.find('\0') != std::string_view::npos)
        return Refused("…", "an address holds no NUL byte");
    if (text.front() == '/') {
        if (text.back() == '/') return Refused(text, "this is a folder, not a device");
        address.path = text;
        return {std::move(address), {}};
    }
    const std::string scheme = LowerCase(text.substr(0, TcpScheme.size()));
    if (scheme == TcpScheme) {
        const std::string rest(text.substr(TcpScheme.size()));
        return ParseTcp(std::move(address), rest);
    }
    if (scheme.starts_with(SimulatorScheme)) {
        address.kind = AddressKind::Simulator;
        address.simulator = text.substr(SimulatorScheme.size());
        const std::string objection = SimulatorAddressError(address.simulator);
        if (!objection.empty()) return Refused(address.text, objection);
        return {std::move(address), {}};
    }
    return Refused(text, "an address is a device such as /dev/ttyUSB0, tcp://host:port, or "
                         "sim:MODEL for the virtual printer");
}

std::optional<std::int16_t> ParsePortNumber(std::string_view sText) {
    std::string text = LowerCase(Trim(sText));
    if (text.starts_with("com")) {
        text.erase(0, 3);
        if (text.ends_with(':')) text.pop_back();
    }
    const auto number = Digits(text);
    if (!number || *number > static_cast<std::uint32_t>(HighestPort)) return std::nullopt;
    return static_cast<std::int16_t>(*number);
}

} // namespace qncomm

#include "serial/PortAddress.h"

#include "SimulatorAddress.h"
#include "common/Text.h"

#include <array>
#include <charconv>

namespace qncomm {
namespace {

constexpr std::string_view SimulatorScheme = "sim:";

struct SocketScheme {
    std::string_view text;
    AddressKind kind;
    std::string_view form; ///< what is right, when an address is wrong
};

constexpr std::array SocketSchemes{
    SocketScheme{
        "tcp://", AddressKind::Tcp,
        "a socket is written tcp://host:port, with a port of 1 to 65535 and an IPv6 number "
        "in brackets"},
    SocketScheme{"rfc2217://", AddressKind::Rfc2217,
                 "a remote serial port is written rfc2217://host:port, with a port of 1 to 65535 "
                 "and an IPv6 number in brackets"}};

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

PortAddressResult ParseSocket(PortAddress address, const SocketScheme& scheme) {
    const std::string text = address.text;
    const std::string_view rest = std::string_view(text).substr(scheme.text.size());
    const std::string_view form = scheme.form;
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
    address.kind = scheme.kind;
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
    const std::string lower = LowerCase(text);
    for (const SocketScheme& scheme : SocketSchemes)
        if (lower.starts_with(scheme.text)) return ParseSocket(std::move(address), scheme);
    if (lower.starts_with(SimulatorScheme)) {
        address.kind = AddressKind::Simulator;
        address.simulator = text.substr(SimulatorScheme.size());
        const std::string objection = SimulatorAddressError(address.simulator);
        if (!objection.empty()) return Refused(address.text, objection);
        return {std::move(address), {}};
    }
    return Refused(text, "an address is a device such as /dev/ttyUSB0, tcp://host:port, "
                         "rfc2217://host:port, or sim:MODEL for the virtual printer");
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

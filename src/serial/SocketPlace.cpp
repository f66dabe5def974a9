#include "SocketPlace.h"

#include <charconv>
#include <cstdint>

namespace qncomm {
namespace {

std::optional<std::uint16_t> PortIn(std::string_view text) {
    std::uint16_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value == 0) return std::nullopt;
    return value;
}

} // namespace

std::optional<SocketPlace> ParseSocketPlace(std::string_view sAddress, std::string_view sScheme) {
    const std::string_view rest = sAddress.substr(sScheme.size());
    const std::size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos) return std::nullopt;
    std::string_view host = rest.substr(0, colon);
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (bracketed) host = host.substr(1, host.size() - 2);
    const auto port = PortIn(rest.substr(colon + 1));
    if (!port || host.empty() || host.find_first_of("/[]@ ") != std::string_view::npos)
        return std::nullopt;
    if (!bracketed && host.find(':') != std::string_view::npos) return std::nullopt;
    return SocketPlace{std::string(host), std::to_string(*port)};
}

} // namespace qncomm

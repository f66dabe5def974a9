#include "serial/PortAddress.h"

#include "common/Text.h"

#include <algorithm>
#include <charconv>

namespace qncomm {
namespace {

constexpr std::int16_t HighestPort = 16;

PortAddressResult Refused(std::string_view text, std::string_view reason) {
    return {std::nullopt, "\"" + std::string(text) + "\": " + std::string(reason)};
}

/// "an address is A, B, or C".
std::string FormsOf(const ChannelKinds& kinds) {
    std::string text = "an address is ";
    for (std::size_t index = 0; index < kinds.size(); ++index) {
        if (index > 0) text += index + 1 < kinds.size() ? ", " : ", or ";
        text += kinds[index]->form;
    }
    return text;
}

} // namespace

PortAddressResult ParsePortAddress(std::string_view sText, const ChannelKinds& kinds) {
    const std::string text(Trim(sText));
    if (text.empty()) return Refused(text, "an address is missing");
    if (text.find('\0') != std::string::npos) return Refused("…", "an address holds no NUL byte");
    const std::string lower = LowerCase(text);
    const auto kind = std::ranges::find_if(
        kinds, [&](const ChannelKind* known) { return lower.starts_with(known->scheme); });
    if (kind == kinds.end()) return Refused(text, FormsOf(kinds));
    if (const std::string objection = (*kind)->check(text); !objection.empty())
        return Refused(text, objection);
    return {PortAddress{text, *kind}, {}};
}

std::optional<std::int16_t> ParsePortNumber(std::string_view sText) {
    std::string text = LowerCase(Trim(sText));
    if (text.starts_with("com")) {
        text.erase(0, 3);
        if (text.ends_with(':')) text.pop_back();
    }
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number > HighestPort)
        return std::nullopt;
    return static_cast<std::int16_t>(number);
}

std::unique_ptr<ByteChannel> MakeChannel(const PortAddress& address, Reactor& reactor) {
    return address.kind->make(address.text, reactor);
}

std::string NameOfPort(std::int16_t iPort) {
    return "COM" + std::to_string(iPort);
}

} // namespace qncomm

#include "serial/LineSettings.h"

#include "common/Text.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace qncomm {
namespace {

/// The whole text as a number, nothing when it is none.
std::optional<int> WholeNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

} // namespace

std::optional<LineSettings> ParseLineSettings(std::string_view sText) {
    std::vector<std::string> items = SplitKeepEmpty(sText, ",");
    if (items.size() != 4) return std::nullopt;
    for (std::string& item : items)
        item = LowerCase(Trim(item));
    const auto baud = WholeNumber(items[0]);
    const auto dataBits = WholeNumber(items[2]);
    const auto stopBits = WholeNumber(items[3]);
    if (!baud || std::find(BaudRates.begin(), BaudRates.end(), *baud) == BaudRates.end())
        return std::nullopt;
    if (items[1].size() != 1 || std::string_view("neoms").find(items[1]) == std::string_view::npos)
        return std::nullopt;
    if (!dataBits || (*dataBits != 7 && *dataBits != 8)) return std::nullopt;
    if (!stopBits || (*stopBits != 1 && *stopBits != 2)) return std::nullopt;
    LineSettings settings;
    settings.baud = *baud;
    settings.parity = items[1][0];
    settings.dataBits = *dataBits;
    settings.stopBits = *stopBits;
    return settings;
}

std::string TextOf(const LineSettings& settings) {
    return std::to_string(settings.baud) + "," + UpperCase(std::string(1, settings.parity)) + ","
           + std::to_string(settings.dataBits) + "," + std::to_string(settings.stopBits);
}

} // namespace qncomm

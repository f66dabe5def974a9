#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace qnsim {

char UpperChar(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string Upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), UpperChar);
    return result;
}

std::string Lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string Squeezed(std::string_view text) {
    std::string result = Upper(text);
    std::erase(result, ' ');
    return result;
}

bool CaselessLess::operator()(std::string_view left, std::string_view right) const {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char one, char other) {
                                            return static_cast<unsigned char>(UpperChar(one))
                                                   < static_cast<unsigned char>(UpperChar(other));
                                        });
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string NumberText(double value) {
    constexpr double wholeLimit = 1e15;
    std::array<char, 40> buffer{};
    const bool whole = std::abs(value) < wholeLimit && value == std::trunc(value);
    const auto result =
        whole ? std::to_chars(buffer.begin(), buffer.end(), static_cast<long long>(value))
              : std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::general, 9);
    return {buffer.data(), result.ptr};
}

double TextNumber(std::string_view text) {
    text = Trim(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}

std::optional<double> WholeTextNumber(std::string_view text) {
    if (text.empty()) return 0;
    const char* const end = text.data() + text.size();
    double value = 0;
    std::from_chars_result result{};
    if (Upper(text.substr(0, 2)) == "&H") {
        std::uint32_t bits = 0;
        result = std::from_chars(text.data() + 2, end, bits, 16);
        value = bits;
    } else {
        if (text.front() == '+' && !text.starts_with("+-")) text.remove_prefix(1);
        result = std::from_chars(text.data(), end, value);
    }
    const bool whole = result.ec == std::errc() && result.ptr == end && std::isfinite(value);
    return whole ? std::optional(value) : std::nullopt;
}

} // namespace qnsim

#include "common/SafeText.h"

#include "common/Utf8.h"

#include <algorithm>
#include <cstddef>

namespace qncomm {
namespace {

/// What would not stand in a line as it is: controls, and the marks that end or turn it around, so
/// that a text could pass for another one.
bool IsControl(char32_t point) {
    constexpr std::u32string_view turning = U"\u061C\u200E\u200F\u2028\u2029\u202A\u202B\u202C"
                                            U"\u202D\u202E\u2066\u2067\u2068\u2069";
    return point < 0x20 || (point >= 0x7F && point < 0xA0)
           || turning.find(point) != std::u32string_view::npos;
}

/// The text with what escape makes of each control.
std::string EscapeControls(std::string_view text, std::string (*escape)(char32_t point)) {
    const auto mayBeControl = [](char byte) { return byte < ' ' || byte > '~'; };
    if (std::ranges::none_of(text, mayBeControl)) return std::string(text); // ASCII
    std::string shown;
    while (!text.empty()) {
        const Utf8Character c = FirstOfUtf8(text);
        const std::size_t size = std::max<std::size_t>(c.size, 1);
        // A lone byte may be a control to a terminal that takes bytes for characters.
        const char32_t point = c.valid ? c.point : static_cast<unsigned char>(text.front());
        if (IsControl(point))
            shown += escape(point);
        else
            shown += text.substr(0, size);
        text.remove_prefix(size);
    }
    return shown;
}

std::string HexOf(char32_t point, std::size_t length) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text(length, '0');
    for (std::size_t i = length; i-- > 0; point >>= 4U)
        text[i] = digits[point & 15U];
    return text;
}

} // namespace

std::string WithoutControls(std::string_view sUtf8) {
    return EscapeControls(sUtf8, [](char32_t point) {
        return point < 0x100 ? "\\x" + HexOf(point, 2) : "\\u" + HexOf(point, 4);
    });
}

std::string WithoutControlsInJson(std::string_view sJson) {
    return EscapeControls(sJson, [](char32_t point) { return "\\u" + HexOf(point, 4); });
}

std::string FileNameFromPrinter(std::string_view sBytes) {
    std::string name =
        EscapeControls(Utf8FromPrinter(sBytes), [](char32_t) { return std::string("_"); });
    std::ranges::replace_if(
        name, [](char c) { return c == '/' || c == '\\'; }, '_');
    if (name.empty()) name = "_";
    if (name.front() == '.' || name.front() == '-') name.front() = '_';
    if (name.size() <= LongestHostName) return name;
    std::size_t end = LongestHostName;
    while ((static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80)
        --end; // no character is cut in two
    name.resize(end);
    return name;
}

} // namespace qncomm

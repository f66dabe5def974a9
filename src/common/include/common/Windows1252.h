#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// What the bytes 0x80 to 0x9F of the printer's character set, Windows-1252, stand for as Unicode;
/// the five that it leaves undefined stand for the control characters of their own number. Every
/// other byte stands for the character of its number.
constexpr std::array<char16_t, 32> Windows1252Upper{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// The character, as its Unicode number, that a byte of the line stands for.
constexpr char16_t CharacterOf(char cByte) {
    const auto byte = static_cast<unsigned char>(cByte);
    return byte >= 0x80 && byte < 0xA0 ? Windows1252Upper[byte - 0x80] : char16_t{byte};
}

/// The byte of the line that stands for a character; nothing when the character set lacks it.
constexpr std::optional<char> LineByteOf(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100))
        return static_cast<char>(character);
    const auto* const found = std::ranges::find(Windows1252Upper, character);
    if (found == Windows1252Upper.end()) return std::nullopt;
    return static_cast<char>(0x80 + (found - Windows1252Upper.begin()));
}

/// Bytes of the line as UTF-16, one character a byte.
inline std::u16string CharactersOf(std::string_view sBytes) {
    std::u16string text(sBytes.size(), u'\0');
    std::ranges::transform(sBytes, text.begin(), CharacterOf);
    return text;
}

/// UTF-16 as bytes of the line; a character that has none becomes one "?".
inline std::string LineBytesOf(std::u16string_view sText) {
    std::string bytes;
    bytes.reserve(sText.size());
    for (const char16_t unit : sText) {
        const bool secondHalf = unit >= 0xDC00 && unit < 0xE000;
        if (!secondHalf) bytes += LineByteOf(unit).value_or('?');
    }
    return bytes;
}

} // namespace qncomm

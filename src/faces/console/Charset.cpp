#include "console/Charset.h"

#include "common/Windows1252.h"

#include <array>
#include <cstdint>

namespace qncomm {
namespace {

void AppendUtf8(std::string& text, char32_t point) {
    const auto put = [&](char32_t bits) { text += static_cast<char>(bits); };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | (point >> 6));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

/// One character at the start of a UTF-8 text.
struct Character {
    std::size_t size = 0; ///< bytes; 0 = the text ends inside it
    char32_t point = 0;
    bool valid = false;
};

std::size_t SizeFromLead(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool IsShortestForm(const Character& c) {
    constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = c.point >= 0xD800 && c.point < 0xE000;
    return c.point >= least[c.size] && c.point < 0x110000 && !surrogate;
}

Character FirstCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = SizeFromLead(lead);
    if (size == 0) return {1, 0, false};
    if (size == 1) return {1, lead, true};
    Character c{size, char32_t{lead} & (0x7FU >> size), true};
    for (std::size_t i = 1; i < size; ++i) {
        if (i == text.size()) return {0, 0, false};
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80) return {i, 0, false};
        c.point = (c.point << 6) | (byte & 0x3FU);
    }
    c.valid = IsShortestForm(c);
    return c;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character c = FirstCharacter(text);
        if (!c.valid) return false;
        text.remove_prefix(c.size);
    }
    return true;
}

} // namespace

std::string Utf8FromPrinter(std::string_view sBytes) {
    std::string text;
    text.reserve(sBytes.size());
    for (const char c : sBytes)
        AppendUtf8(text, CharacterOf(c));
    return text;
}

std::optional<std::string> PrinterFromUtf8(std::string_view sText) {
    std::string bytes;
    while (!sText.empty()) {
        const Character c = FirstCharacter(sText);
        const auto byte = c.valid ? LineByteOf(c.point) : std::nullopt;
        if (!byte) return std::nullopt;
        bytes += *byte;
        sText.remove_prefix(c.size);
    }
    return bytes;
}

std::string DisplayText(std::string_view sText) {
    return IsUtf8(sText) ? std::string(sText) : Utf8FromPrinter(sText);
}

std::string WithoutControls(std::string_view sUtf8) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < sUtf8.size(); ++i) {
        auto byte = static_cast<unsigned char>(sUtf8[i]);
        // The controls from 0x80 to 0x9F are two bytes in UTF-8.
        const bool upper =
            byte == 0xC2 && i + 1 < sUtf8.size() && static_cast<unsigned char>(sUtf8[i + 1]) < 0xA0;
        if (upper) byte = static_cast<unsigned char>(sUtf8[++i]);
        if (upper || byte < 0x20 || byte == 0x7F)
            text.append("\\x").append({digits[byte >> 4], digits[byte & 15]});
        else
            text += sUtf8[i];
    }
    return text;
}

std::string TypedText::Feed(std::string_view sPiece) {
    mRest += sPiece;
    std::string bytes;
    std::string_view left = mRest;
    while (!left.empty()) {
        const Character c = FirstCharacter(left);
        if (c.size == 0) break;
        bytes += c.valid ? LineByteOf(c.point).value_or('?') : '?';
        left.remove_prefix(c.size);
    }
    mRest = std::string(left);
    return bytes;
}

} // namespace qncomm

#include "common/Utf8.h"

#include "common/Text.h"
#include "common/Windows1252.h"

#include <algorithm>
#include <array>

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

std::size_t SizeFromLead(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool IsShortestForm(const Utf8Character& c) {
    constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = c.point >= 0xD800 && c.point < 0xE000;
    return c.point >= least[c.size] && c.point < 0x110000 && !surrogate;
}

} // namespace

Utf8Character FirstOfUtf8(std::string_view sText) {
    const auto lead = static_cast<unsigned char>(sText.front());
    const std::size_t size = SizeFromLead(lead);
    if (size == 0) return {1, 0, false};
    if (size == 1) return {1, lead, true};
    Utf8Character c{size, char32_t{lead} & (0x7FU >> size), true};
    for (std::size_t i = 1; i < size; ++i) {
        if (i == sText.size()) return {0, 0, false};
        const auto byte = static_cast<unsigned char>(sText[i]);
        if ((byte & 0xC0U) != 0x80) return {i, 0, false};
        c.point = (c.point << 6) | (byte & 0x3FU);
    }
    c.valid = IsShortestForm(c);
    return c;
}

std::string Utf8FromPrinter(std::string_view sBytes) {
    std::string text;
    text.reserve(sBytes.size());
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    for (const char *at = sBytes.data(), *end = at + sBytes.size(); at != end;) {
        const char* const run = std::find_if_not(at, end, isAscii);
        text.append(at, run);
        for (at = run; at != end && !isAscii(*at); ++at)
            AppendUtf8(text, CharacterOf(*at));
    }
    return text;
}

std::optional<std::string> PrinterFromUtf8(std::string_view sText) {
    std::string bytes;
    while (!sText.empty()) {
        const Utf8Character c = FirstOfUtf8(sText);
        const auto byte = c.valid ? LineByteOf(c.point) : std::nullopt;
        if (!byte) return std::nullopt;
        bytes += *byte;
        sText.remove_prefix(c.size);
    }
    return bytes;
}

std::string PrinterNameOf(std::string_view sHostPath) {
    const std::string name = FileNameOf(sHostPath);
    return PrinterFromUtf8(name).value_or(name);
}

} // namespace qncomm

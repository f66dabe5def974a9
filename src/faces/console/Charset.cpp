#include "console/Charset.h"

#include "common/Windows1252.h"

namespace qncomm {
namespace {

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character c = FirstOfUtf8(text);
        if (!c.valid) return false;
        text.remove_prefix(c.size);
    }
    return true;
}

} // namespace

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
        const Utf8Character c = FirstOfUtf8(left);
        if (c.size == 0) break;
        bytes += c.valid ? LineByteOf(c.point).value_or('?') : '?';
        left.remove_prefix(c.size);
    }
    mRest = std::string(left);
    return bytes;
}

} // namespace qncomm

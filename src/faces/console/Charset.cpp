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

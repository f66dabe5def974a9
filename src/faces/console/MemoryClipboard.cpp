#include "console/MemoryClipboard.h"

namespace qncomm {

void MemoryClipboard::SetText(std::string_view sText) {
    mText.clear();
    for (const char c : sText) {
        if (c == '\n' && !mText.ends_with('\r')) mText += '\r';
        mText += c;
    }
}

} // namespace qncomm

#include "console/StatusLine.h"

#include "console/Charset.h"

#include <algorithm>
#include <ostream>

namespace qncomm {
namespace {

std::string Bar(std::int32_t percent) {
    constexpr std::int32_t cells = 20;
    if (percent < 1 || percent > 100) return {};
    const auto filled = static_cast<std::size_t>(percent * cells / 100);
    return "[" + std::string(filled, '#') + std::string(cells - filled, '.') + "] "
           + std::to_string(percent) + " % ";
}

/// The start of the text, at most so many columns; no character is cut in two.
std::string Cut(std::string text, std::int32_t columns) {
    std::int32_t used = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool starts = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80;
        if (starts && ++used > columns) return text.substr(0, i);
    }
    return text;
}

} // namespace

StatusLine::StatusLine(std::ostream& out, Style style, std::int32_t lWidth)
    : mOut(out), mStyle(style), mWidth(std::max(lWidth, 20)) {}

StatusLine::~StatusLine() {
    Clear();
}

void StatusLine::Show(std::string_view sMessage, std::int32_t lPercent, std::string_view sDetail) {
    const std::string message = WithoutControls(DisplayText(sMessage));
    const std::string detail = sDetail.empty() ? "" : "  " + WithoutControls(DisplayText(sDetail));
    switch (mStyle) {
    case Style::Off:
        return;
    case Style::Transient:
        // One column stays free: a full line would wrap.
        mOut << '\r' << Cut(Bar(lPercent) + message + detail, mWidth - 1) << "\x1B[K" << std::flush;
        mShown = true;
        return;
    case Style::Lines:
        if (message == mLast) return;
        mLast = message;
        mOut << message << std::endl;
        return;
    }
}

void StatusLine::Clear() {
    if (mShown) mOut << "\r\x1B[K" << std::flush;
    mShown = false;
}

void StatusLine::Keep(std::string_view sMessage) {
    Clear();
    const std::string message = WithoutControls(DisplayText(sMessage));
    if (mStyle == Style::Off || (mStyle == Style::Lines && message == mLast)) return;
    mOut << message << std::endl;
}

} // namespace qncomm

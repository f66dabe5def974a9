#pragma once

#include "terminal/view/TerminalText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// Where a search found its text.
struct FoundText {
    TextPosition from; ///< before its first cell
    TextPosition to;   ///< behind its last cell, on the line of that cell
};

/// Which way a search goes on.
enum class SearchDirection : std::uint8_t {
    Back,    ///< towards older text
    Forward, ///< towards newer text
};

/// Finds sWanted in screen and scroll-back: bytes of the line, letters in either case, also where
/// the terminal broke a line only for want of columns. The search starts at a place, tries that
/// place itself last, and goes on at the other end of the text. Nothing for an empty text, and for
/// one that stands nowhere.
std::optional<FoundText> FindText(const TerminalText& text, std::string_view sWanted,
                                  const TextPosition& from, SearchDirection direction);

} // namespace qncomm

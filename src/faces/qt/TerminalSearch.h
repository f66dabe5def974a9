#pragma once

#include "TerminalText.h"

#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// Where a search found its text.
struct FoundText {
    TextPosition from;
    TextPosition to;
};

enum class SearchDirection { Back, Forward };

/// Finds sWanted (bytes of the line, letters in either case) in screen and scroll-back, also where
/// the terminal broke a line for want of columns. Starts at a place, which itself is looked at
/// last, and goes on at the other end. Nothing for an empty text and for one that is nowhere.
std::optional<FoundText> FindText(const TerminalText& text, std::string_view sWanted,
                                  const TextPosition& from, SearchDirection direction);

} // namespace qncomm

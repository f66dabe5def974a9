#pragma once

#include "terminal/Style.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qncomm::terminal {

/// Neighbouring cells of one style.
struct StyleRun {
    std::size_t length = 0; ///< in cells, at least 1
    Style style;            ///< of each of them

    /// Whether length and style are the same.
    bool operator==(const StyleRun&) const = default;
};

/// One line as a painter takes it: a copy, valid for as long as its owner keeps it.
struct TerminalLine {
    std::string text;           ///< one byte of Windows-1252 a cell, up to the last written cell
    std::vector<StyleRun> runs; ///< together as long as the text; none when all of it is default
    Style fill;                 ///< how the rest of the row is drawn
    bool wrapped = false;       ///< the next line goes on where this one had no more space

    /// Whether both show the same.
    bool operator==(const TerminalLine&) const = default;
};

} // namespace qncomm::terminal

#pragma once

#include "terminal/Terminal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qncomm {

/// A place between two cells: a line by its number, and how many cells stand left of it.
struct TextPosition {
    std::uint64_t line = 0;
    std::size_t column = 0;
    bool operator==(const TextPosition&) const = default;
    bool operator<(const TextPosition& other) const {
        return line != other.line ? line < other.line : column < other.column;
    }
};

/// Lines that the terminal broke only because it had no more columns, as the one that they are.
struct Paragraph {
    std::uint64_t first = 0;         ///< the number of its first line
    std::string text;                ///< without the blanks at its end
    std::vector<std::size_t> starts; ///< where each of its lines starts in the text

    std::uint64_t Last() const { return first + starts.size() - 1; }
    std::size_t OffsetOf(const TextPosition& position) const;
    TextPosition PositionOf(std::size_t offset) const;
};

/// The terminal's scroll-back and screen as one run of lines that keep their numbers: what scrolls
/// off the screen is still the line it was. Bytes of the line.
class TerminalText {
  public:
    /// The grid outlives this.
    explicit TerminalText(const Terminal& grid) : mGrid(grid) {}

    /// The oldest line that is kept, the screen's first row, and one behind its last row.
    std::uint64_t Begin() const { return mGrid.ScrollbackBegin(); }
    std::uint64_t ScreenBegin() const { return mGrid.ScrollbackEnd(); }
    std::uint64_t End() const;

    std::uint64_t CursorLine() const;
    /// In cells from the left edge, from 0.
    std::size_t CursorColumn() const;

    /// The line of that number; an empty one when it is not kept.
    terminal::TerminalLine Line(std::uint64_t number) const;
    bool IsBlank(std::uint64_t number) const;
    Paragraph ParagraphAt(std::uint64_t number) const;

  private:
    const Terminal& mGrid;
};

} // namespace qncomm

#pragma once

#include "terminal/Terminal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qncomm {

/// A place between two cells.
struct TextPosition {
    std::uint64_t line = 0; ///< by its number, as Terminal counts what has scrolled off
    std::size_t column = 0; ///< how many cells stand left of it

    /// Whether both are the same place.
    bool operator==(const TextPosition&) const = default;
    /// Whether this place comes before the other in reading order.
    bool operator<(const TextPosition& other) const {
        return line != other.line ? line < other.line : column < other.column;
    }
};

/// Lines that the terminal broke only because it had no more columns, as the one that they are.
struct Paragraph {
    std::uint64_t first = 0;         ///< the number of its first line
    std::string text;                ///< without the blanks at its end
    std::vector<std::size_t> starts; ///< where each of its lines starts in the text

    /// The number of its last line.
    std::uint64_t Last() const { return first + starts.size() - 1; }
    /// Where a place is in the text: 0 for one before the paragraph, the end for one behind it.
    std::size_t OffsetOf(const TextPosition& position) const;
    /// The place of an offset that is at most the text's size.
    TextPosition PositionOf(std::size_t offset) const;
};

/// The terminal's scroll-back and screen as one run of lines that keep their numbers: what scrolls
/// off the screen is still the line it was. Bytes of the line.
class TerminalText {
  public:
    /// The grid must outlive the object, which reads it anew with each call.
    explicit TerminalText(const Terminal& grid) : mGrid(grid) {}

    /// The number of the oldest line that is kept.
    std::uint64_t Begin() const { return mGrid.ScrollbackBegin(); }
    /// The number of the screen's first row.
    std::uint64_t ScreenBegin() const { return mGrid.ScrollbackEnd(); }
    /// One behind the number of the screen's last row.
    std::uint64_t End() const;
    /// The columns of the screen.
    std::size_t Width() const { return static_cast<std::size_t>(mGrid.Columns()); }

    /// The number of the line with the cursor.
    std::uint64_t CursorLine() const;
    /// In cells from the left edge, from 0.
    std::size_t CursorColumn() const;

    /// The line of that number; an empty one when it is not kept.
    terminal::TerminalLine Line(std::uint64_t number) const;
    /// Whether the line shows nothing: no character, no style, no background of its own.
    bool IsBlank(std::uint64_t number) const;
    /// The paragraph that the line of that number belongs to; no further than 1000 lines each way.
    Paragraph ParagraphAt(std::uint64_t number) const;

  private:
    const Terminal& mGrid;
};

} // namespace qncomm

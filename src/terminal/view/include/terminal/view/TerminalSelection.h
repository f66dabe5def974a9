#pragma once

#include "terminal/view/TerminalText.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace qncomm {

/// The marked text: what the mouse was dragged over, or what a search has found. It holds places,
/// not text, so that it stays where it is while lines scroll off.
class TerminalSelection {
  public:
    /// What a drag marks: from cell to cell, whole words, whole lines, or a rectangle.
    enum class Kind : std::uint8_t {
        Cells, ///< from one edge between two cells to another
        Words, ///< whole words; "ram:name.prg" is one
        Lines, ///< whole lines, each with what it was broken into
        Block, ///< a rectangle
    };

    /// Some neighbouring cells of a line.
    struct Columns {
        std::size_t from = 0; ///< the first one, from 0
        std::size_t to = 0;   ///< one behind the last
        /// Whether there is no cell.
        bool Empty() const { return from >= to; }
    };

    /// What a drag marks by how often the button was pressed in a row before it (1 to 3), and
    /// whether the key for rectangles is held.
    static Kind KindOf(int presses, bool bBlock);
    /// Whether a selection of that kind starts and ends at edges between cells, not at cells.
    static bool IsByCells(Kind kind) { return kind == Kind::Cells || kind == Kind::Block; }

    /// Starts anew at a place: nothing is marked yet, or the word or line there.
    void Start(const TerminalText& text, const TextPosition& at, Kind kind);
    /// Moves the end that is not fixed; what was marked by Start stays marked.
    void ExtendTo(const TerminalText& text, const TextPosition& at);
    /// Marks from one place to another in reading order, whatever was marked before.
    void Mark(const TextPosition& from, const TextPosition& to);
    /// Marks nothing, as in the beginning.
    void Clear() { *this = {}; }

    /// Whether no cell is marked.
    bool Empty() const {
        return mKind == Kind::Block ? mFrom.column >= mTo.column : !(mFrom < mTo);
    }
    /// Whether nothing has been started since the last Clear.
    bool Untouched() const { return mUntouched; }
    /// Whether its ends are edges between cells; words and lines start from a cell.
    bool IsByCells() const { return IsByCells(mKind); }
    /// Where it starts: for a rectangle, its upper left corner.
    const TextPosition& From() const { return mFrom; }
    /// Where it ends: for a rectangle, its lower right corner.
    const TextPosition& To() const { return mTo; }

    /// Whether what is marked is still the text it was after the screen has changed; bRenumbered as
    /// TerminalScroll::Update says it.
    bool Outlives(const TerminalText& text, const terminal::Damage& damage, bool bRenumbered) const;

    /// What is marked of a line whose row has that many cells.
    Columns On(std::uint64_t line, std::size_t width) const;

    /// The marked text with CR LF between its lines, without the blanks at their ends. Lines that
    /// are broken only for want of columns stay together.
    std::string Text(const TerminalText& text) const;

  private:
    bool mUntouched = true;
    Kind mKind = Kind::Cells;
    TextPosition mFixedFrom; ///< what was marked first stays marked
    TextPosition mFixedTo;
    TextPosition mFrom;
    TextPosition mTo;
};

} // namespace qncomm

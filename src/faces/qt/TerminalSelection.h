#pragma once

#include "TerminalText.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace qncomm {

/// What the person has marked with the mouse, or a search has found.
class TerminalSelection {
  public:
    /// What a drag marks: from cell to cell, whole words, whole lines, or a rectangle.
    enum class Kind { Cells, Words, Lines, Block };

    /// The cells from, up to, not including, to of a line.
    struct Columns {
        std::size_t from = 0;
        std::size_t to = 0;
        bool Empty() const { return from >= to; }
    };

    /// Starts anew at a place: nothing is marked yet, or the word or line there.
    void Start(const TerminalText& text, const TextPosition& at, Kind kind);
    /// Moves the end that is not fixed.
    void ExtendTo(const TerminalText& text, const TextPosition& at);
    void Mark(const TextPosition& from, const TextPosition& to);
    void Clear() { *this = {}; }

    bool Empty() const {
        return mKind == Kind::Block ? mFrom.column >= mTo.column : !(mFrom < mTo);
    }
    /// Whether nothing has been started since the last Clear.
    bool Untouched() const { return mUntouched; }
    /// Whether its ends are edges between cells; words and lines start from a cell.
    bool IsByCells() const { return mKind == Kind::Cells || mKind == Kind::Block; }
    const TextPosition& From() const { return mFrom; }
    const TextPosition& To() const { return mTo; }

    /// What is marked of a line of a terminal that is width cells wide.
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

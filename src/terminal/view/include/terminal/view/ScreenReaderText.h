#pragma once

#include "terminal/view/TerminalText.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qncomm {

/// The screen as a screen reader takes it: its lines down to the last that holds anything, without
/// the blanks at their ends but with those left of the cursor, line feeds between them. Offsets
/// count characters of the text from 0.
struct ReaderScreen {
    std::uint64_t firstLine = 0; ///< the number of the screen's first row
    std::u16string text;         ///< one unit a cell
    std::vector<int> lineStarts; ///< where each line starts in the text
    int cursor = 0;              ///< characters before it

    /// Which line and column a character stands at.
    TextPosition PositionOf(int offset) const;
    /// The character at a place, or the end of its line.
    int OffsetOf(const TextPosition& position) const;
};

/// The screen's rows up to, not including, the line contentEnd.
ReaderScreen ReaderScreenOf(const TerminalText& text, std::uint64_t contentEnd);

/// What became of a piece of the text: taken away or put in.
struct TextChange {
    int at = 0;            ///< the offset of its first character
    std::u16string text;   ///< the piece
    bool inserted = false; ///< false: it was there and is no longer
};

/// Follows the screen for assistive programs, which are told changes and not pictures.
class ScreenReaderText {
  public:
    /// How the last screen becomes this one, step by step: lines that have left the screen, then
    /// what differs. Keeps the screen for the next call.
    [[nodiscard]] std::vector<TextChange> Follow(ReaderScreen now);

    /// The offset of the cursor as of the last call.
    int Cursor() const { return mTold.cursor; }

  private:
    ReaderScreen mTold;
};

} // namespace qncomm

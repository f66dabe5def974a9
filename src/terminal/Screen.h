#pragma once

#include "ControlParser.h"
#include "Grid.h"
#include "Scrollback.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm::terminal {

/// What a terminal does with text, controls and sequences: cursor, modes, margins, tab stops, and
/// the grid and the scroll-back that it writes to. Rows and columns count from 0.
///
/// It never answers: a reply to a status request would be typed into the printer's command line. It
/// knows one character set, so that noise on the line cannot turn text into drawings.
class Screen final : public ControlEvents {
  public:
    Screen(std::uint16_t rows, std::uint16_t columns, std::size_t scrollbackLines);

    void Print(std::string_view text) override;
    void Execute(char control) override;
    void Escape(const ControlSequence& sequence) override;
    void Control(const ControlSequence& sequence) override;

    /// Everything as it was at the start; only the lines that have scrolled off stay.
    void Reset();

    /// Cuts off or adds at the right and at the bottom; when the cursor's row would be cut off,
    /// rows leave at the top into the scroll-back instead. The margins become the whole screen.
    void Resize(std::uint16_t rows, std::uint16_t columns);

    std::uint16_t Row() const { return mCursor.row; }
    std::uint16_t Column() const { return mCursor.column; }
    bool CursorVisible() const { return mModes.cursorVisible; }
    /// Goes to the nearest place that there is.
    void MoveTo(int row, int column);

    /// All rows at full width, CR LF between them; "" when nothing but blanks is on the screen.
    std::string Text() const;

    /// Whether the bell has rung since the last call.
    bool TakeBell();

    Grid& Cells() { return mGrid; }
    const Grid& Cells() const { return mGrid; }
    Scrollback& Lines() { return mScrollback; }
    const Scrollback& Lines() const { return mScrollback; }

    /// What "set mode" and "reset mode" switch.
    struct Modes {
        bool insert = false;  ///< printing moves the rest of the row on
        bool newLine = false; ///< a line feed returns to the first column too
        bool autoWrap = true;
        bool origin = false; ///< rows count from the top margin, and the cursor stays inside
        bool cursorVisible = true;
    };

  private:
    struct Cursor {
        std::uint16_t row = 0;
        std::uint16_t column = 0;
        bool wrapNext = false; ///< the last column is written; the next character goes on below
        Style style;
    };
    struct SavedCursor {
        Cursor cursor;
        bool origin = false;
        bool autoWrap = true;
    };
    struct ControlRow;
    struct ControlTable;
    using Handler = void (Screen::*)(const ControlSequence&);

    /// Moving and scrolling
    void PrintPiece(std::string_view& text);
    void WrapLine();
    void LineFeed();
    void Index();
    void ReverseIndex();
    void ScrollOff(std::uint16_t count);
    void NextTab();
    void CursorMoved() { mCursor.wrapNext = false; }
    void HomeCursor() { MoveTo(mModes.origin ? mTop : 0, 0); }
    void Save();
    void Restore();
    void SoftReset();
    void ResetTabs(std::uint16_t from);
    bool InMargins() const { return mCursor.row >= mTop && mCursor.row <= mBottom; }
    std::uint16_t LastRow() const { return static_cast<std::uint16_t>(mGrid.Rows() - 1); }
    std::uint16_t LastColumn() const { return static_cast<std::uint16_t>(mGrid.Columns() - 1); }
    std::uint16_t MarginHeight() const { return static_cast<std::uint16_t>(mBottom - mTop + 1); }
    Style Blank() const { return mCursor.style.Erased(); }

    /// Control sequences, by what they are called
    void CursorUp(const ControlSequence& sequence);
    void CursorDown(const ControlSequence& sequence);
    void CursorForward(const ControlSequence& sequence);
    void CursorBack(const ControlSequence& sequence);
    void CursorNextLine(const ControlSequence& sequence);
    void CursorPrecedingLine(const ControlSequence& sequence);
    void CursorPosition(const ControlSequence& sequence);
    void CursorToColumn(const ControlSequence& sequence);
    void CursorToRow(const ControlSequence& sequence);
    void RowsForward(const ControlSequence& sequence);
    void TabsForward(const ControlSequence& sequence);
    void TabsBack(const ControlSequence& sequence);
    void ClearTabs(const ControlSequence& sequence);
    void EraseInScreen(const ControlSequence& sequence);
    void EraseInRow(const ControlSequence& sequence);
    void EraseCharacters(const ControlSequence& sequence);
    void InsertCharacters(const ControlSequence& sequence);
    void DeleteCharacters(const ControlSequence& sequence);
    void InsertRows(const ControlSequence& sequence);
    void DeleteRows(const ControlSequence& sequence);
    void ScrollRowsUp(const ControlSequence& sequence);
    void ScrollRowsDown(const ControlSequence& sequence);
    void RepeatCharacter(const ControlSequence& sequence);
    void SelectGraphics(const ControlSequence& sequence);
    void SetMargins(const ControlSequence& sequence);
    void SetModes(const ControlSequence& sequence);
    void ResetModes(const ControlSequence& sequence);
    void SwitchModes(const ControlSequence& sequence, bool on);
    void SaveCursor(const ControlSequence& sequence);
    void RestoreCursor(const ControlSequence& sequence);
    void SoftResetSequence(const ControlSequence& sequence);

    Grid mGrid;
    Scrollback mScrollback;
    Cursor mCursor;
    SavedCursor mSaved;
    Modes mModes;
    std::uint16_t mTop = 0; ///< the margins: the rows that scroll
    std::uint16_t mBottom = 0;
    std::vector<bool> mTabs; ///< by column
    char mLastPrinted = ' ';
    bool mBell = false;
};

} // namespace qncomm::terminal

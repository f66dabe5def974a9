// Which control does what: one table for single controls and escapes, one for control sequences.

#include "Graphics.h"
#include "Screen.h"

#include <algorithm>
#include <array>

namespace qncomm::terminal {
namespace {

/// A mode of "set mode", by its mark and number.
struct ModeRow {
    char mark;
    std::uint16_t number;
    bool Screen::Modes::*mode;
};

constexpr std::array ModeRows{
    ModeRow{0, 4, &Screen::Modes::insert},           ModeRow{0, 20, &Screen::Modes::newLine},
    ModeRow{'?', 6, &Screen::Modes::origin},         ModeRow{'?', 7, &Screen::Modes::autoWrap},
    ModeRow{'?', 25, &Screen::Modes::cursorVisible},
};

constexpr int TabStopHere = 0;
constexpr int AllTabStops = 3;

} // namespace

/// A control sequence, by its mark and its last two bytes.
struct Screen::ControlRow {
    char mark;
    char intermediate;
    char final;
    Handler handler;
};

/// The rows, and the plain ones among them by their final byte.
struct Screen::ControlTable {
    static constexpr std::array Rows{
        ControlRow{0, 0, '@', &Screen::InsertCharacters},
        ControlRow{0, 0, 'A', &Screen::CursorUp},
        ControlRow{0, 0, 'B', &Screen::CursorDown},
        ControlRow{0, 0, 'C', &Screen::CursorForward},
        ControlRow{0, 0, 'D', &Screen::CursorBack},
        ControlRow{0, 0, 'E', &Screen::CursorNextLine},
        ControlRow{0, 0, 'F', &Screen::CursorPrecedingLine},
        ControlRow{0, 0, 'G', &Screen::CursorToColumn},
        ControlRow{0, 0, 'H', &Screen::CursorPosition},
        ControlRow{0, 0, 'I', &Screen::TabsForward},
        ControlRow{0, 0, 'J', &Screen::EraseInScreen},
        ControlRow{0, 0, 'K', &Screen::EraseInRow},
        ControlRow{0, 0, 'L', &Screen::InsertRows},
        ControlRow{0, 0, 'M', &Screen::DeleteRows},
        ControlRow{0, 0, 'P', &Screen::DeleteCharacters},
        ControlRow{0, 0, 'S', &Screen::ScrollRowsUp},
        ControlRow{0, 0, 'T', &Screen::ScrollRowsDown},
        ControlRow{0, 0, 'X', &Screen::EraseCharacters},
        ControlRow{0, 0, 'Z', &Screen::TabsBack},
        ControlRow{0, 0, '`', &Screen::CursorToColumn},
        ControlRow{0, 0, 'a', &Screen::CursorForward},
        ControlRow{0, 0, 'b', &Screen::RepeatCharacter},
        ControlRow{0, 0, 'd', &Screen::CursorToRow},
        ControlRow{0, 0, 'e', &Screen::RowsForward},
        ControlRow{0, 0, 'f', &Screen::CursorPosition},
        ControlRow{0, 0, 'g', &Screen::ClearTabs},
        ControlRow{0, 0, 'h', &Screen::SetModes},
        ControlRow{0, 0, 'l', &Screen::ResetModes},
        ControlRow{0, 0, 'm', &Screen::SelectGraphics},
        ControlRow{0, 0, 'r', &Screen::SetMargins},
        ControlRow{0, 0, 's', &Screen::SaveCursor},
        ControlRow{0, 0, 'u', &Screen::RestoreCursor},
        ControlRow{'?', 0, 'h', &Screen::SetModes},
        ControlRow{'?', 0, 'l', &Screen::ResetModes},
        ControlRow{0, '!', 'p', &Screen::SoftResetSequence},
    };

    static constexpr std::array<Handler, 128> MakePlain() {
        std::array<Handler, 128> plain{};
        for (const ControlRow& row : Rows)
            if (row.mark == 0 && row.intermediate == 0)
                plain[static_cast<unsigned char>(row.final)] = row.handler;
        return plain;
    }

    static Handler Find(const ControlSequence& sequence) {
        static constexpr std::array<Handler, 128> plain = MakePlain();
        if (sequence.mark == 0 && sequence.intermediate == 0)
            return plain[static_cast<unsigned char>(sequence.final)];
        const auto row = std::find_if(Rows.begin(), Rows.end(), [&](const ControlRow& candidate) {
            return candidate.mark == sequence.mark && candidate.final == sequence.final
                   && candidate.intermediate == sequence.intermediate;
        });
        return row != Rows.end() ? row->handler : nullptr;
    }
};

// -- Finding what to do

void Screen::Execute(char control) {
    switch (control) {
    case '\a':
        mBell = true;
        break;
    case '\b':
        MoveTo(mCursor.row, mCursor.column - 1);
        break;
    case '\t':
        NextTab();
        break;
    case '\n':
    case '\v':
    case '\f':
        LineFeed();
        break;
    case '\r':
        MoveTo(mCursor.row, 0);
        break;
    default:
        break;
    }
}

void Screen::Escape(const ControlSequence& sequence) {
    if (sequence.intermediate != 0) return; // character sets and line sizes
    switch (sequence.final) {
    case '7':
        return Save();
    case '8':
        return Restore();
    case 'D':
        return Index();
    case 'E':
        mCursor.column = 0;
        return Index();
    case 'H':
        mTabs[mCursor.column] = true;
        return;
    case 'M':
        return ReverseIndex();
    case 'c':
        return Reset();
    default:
        return;
    }
}

void Screen::Control(const ControlSequence& sequence) {
    if (const Handler handler = ControlTable::Find(sequence)) (this->*handler)(sequence);
}

// -- Cursor

void Screen::CursorUp(const ControlSequence& sequence) {
    const int edge = mCursor.row >= mTop ? mTop : 0;
    MoveTo(std::max(edge, mCursor.row - sequence.CountOf(0)), mCursor.column);
}

void Screen::CursorDown(const ControlSequence& sequence) {
    const int edge = mCursor.row <= mBottom ? mBottom : LastRow();
    MoveTo(std::min(edge, mCursor.row + sequence.CountOf(0)), mCursor.column);
}

void Screen::CursorForward(const ControlSequence& sequence) {
    MoveTo(mCursor.row, mCursor.column + sequence.CountOf(0));
}

void Screen::CursorBack(const ControlSequence& sequence) {
    MoveTo(mCursor.row, mCursor.column - sequence.CountOf(0));
}

void Screen::CursorNextLine(const ControlSequence& sequence) {
    CursorDown(sequence);
    mCursor.column = 0;
}

void Screen::CursorPrecedingLine(const ControlSequence& sequence) {
    CursorUp(sequence);
    mCursor.column = 0;
}

void Screen::CursorPosition(const ControlSequence& sequence) {
    CursorToRow(sequence);
    MoveTo(mCursor.row, sequence.CountOf(1) - 1);
}

void Screen::CursorToColumn(const ControlSequence& sequence) {
    MoveTo(mCursor.row, sequence.CountOf(0) - 1);
}

void Screen::CursorToRow(const ControlSequence& sequence) {
    const int row = sequence.CountOf(0) - 1;
    MoveTo(mModes.origin ? std::min<int>(mTop + row, mBottom) : row, mCursor.column);
}

void Screen::RowsForward(const ControlSequence& sequence) {
    const int edge = mModes.origin ? mBottom : LastRow();
    MoveTo(std::min(edge, mCursor.row + sequence.CountOf(0)), mCursor.column);
}

void Screen::SaveCursor(const ControlSequence&) {
    Save();
}

void Screen::RestoreCursor(const ControlSequence&) {
    Restore();
}

// -- Tab stops

void Screen::TabsForward(const ControlSequence& sequence) {
    for (int left = sequence.CountOf(0); left > 0 && mCursor.column < LastColumn(); --left)
        NextTab();
}

void Screen::TabsBack(const ControlSequence& sequence) {
    int left = sequence.CountOf(0);
    std::uint16_t column = mCursor.column;
    while (column > 0 && left > 0)
        if (mTabs[--column]) --left;
    MoveTo(mCursor.row, column);
}

void Screen::ClearTabs(const ControlSequence& sequence) {
    if (sequence.Value(0) == TabStopHere) mTabs[mCursor.column] = false;
    if (sequence.Value(0) == AllTabStops) std::fill(mTabs.begin(), mTabs.end(), false);
}

// -- Erasing, inserting, deleting

void Screen::EraseInScreen(const ControlSequence& sequence) {
    CursorMoved();
    switch (sequence.Value(0)) {
    case 0:
        EraseInRow(sequence);
        for (std::uint16_t row = mCursor.row; row < LastRow();)
            mGrid.Row(++row).Clear(Blank());
        break;
    case 1:
        EraseInRow(sequence);
        for (std::uint16_t row = 0; row < mCursor.row; ++row)
            mGrid.Row(row).Clear(Blank());
        break;
    case 2:
        mGrid.ClearAll(Blank());
        break;
    case 3:
        mScrollback.Clear();
        break;
    default:
        break;
    }
}

void Screen::EraseInRow(const ControlSequence& sequence) {
    const std::uint16_t part = sequence.Value(0);
    if (part > 2) return;
    CursorMoved();
    const std::uint16_t from = part == 0 ? mCursor.column : std::uint16_t{0};
    const auto to = part == 1 ? static_cast<std::uint16_t>(mCursor.column + 1) : mGrid.Columns();
    mGrid.Row(mCursor.row).Erase(from, to, Blank());
}

void Screen::EraseCharacters(const ControlSequence& sequence) {
    CursorMoved();
    const int end = std::min<int>(mGrid.Columns(), mCursor.column + sequence.CountOf(0));
    mGrid.Row(mCursor.row).Erase(mCursor.column, static_cast<std::uint16_t>(end), Blank());
}

void Screen::InsertCharacters(const ControlSequence& sequence) {
    CursorMoved();
    mGrid.Row(mCursor.row).Insert(mCursor.column, sequence.CountOf(0), Blank());
}

void Screen::DeleteCharacters(const ControlSequence& sequence) {
    CursorMoved();
    mGrid.Row(mCursor.row).Delete(mCursor.column, sequence.CountOf(0), Blank());
}

void Screen::InsertRows(const ControlSequence& sequence) {
    if (!InMargins()) return;
    const int most = mBottom - mCursor.row + 1;
    const auto count = static_cast<std::uint16_t>(std::min<int>(most, sequence.CountOf(0)));
    mGrid.ScrollDown(mCursor.row, mBottom, count, Blank());
    MoveTo(mCursor.row, 0);
}

void Screen::DeleteRows(const ControlSequence& sequence) {
    if (!InMargins()) return;
    const int most = mBottom - mCursor.row + 1;
    const auto count = static_cast<std::uint16_t>(std::min<int>(most, sequence.CountOf(0)));
    mGrid.ScrollUp(mCursor.row, mBottom, count, Blank());
    MoveTo(mCursor.row, 0);
}

void Screen::ScrollRowsUp(const ControlSequence& sequence) {
    ScrollOff(sequence.CountOf(0));
}

void Screen::ScrollRowsDown(const ControlSequence& sequence) {
    const auto count = std::min(sequence.CountOf(0), MarginHeight());
    mGrid.ScrollDown(mTop, mBottom, count, Blank());
}

// A repetition is bounded by one row's width: more of them would only push text off the screen.
void Screen::RepeatCharacter(const ControlSequence& sequence) {
    const auto count = std::min(sequence.CountOf(0), mGrid.Columns());
    Print(std::string(count, mLastPrinted));
}

// -- Style, margins, modes

void Screen::SelectGraphics(const ControlSequence& sequence) {
    mCursor.style = WithGraphics(mCursor.style, sequence);
}

void Screen::SetMargins(const ControlSequence& sequence) {
    const int top = sequence.CountOf(0) - 1;
    const int given = sequence.Value(1);
    const int bottom = given == 0 ? LastRow() : std::min<int>(given - 1, LastRow());
    if (top >= bottom) return;
    mTop = static_cast<std::uint16_t>(top);
    mBottom = static_cast<std::uint16_t>(bottom);
    HomeCursor();
}

void Screen::SetModes(const ControlSequence& sequence) {
    SwitchModes(sequence, true);
}

void Screen::ResetModes(const ControlSequence& sequence) {
    SwitchModes(sequence, false);
}

void Screen::SwitchModes(const ControlSequence& sequence, bool on) {
    for (std::size_t i = 0; i < sequence.count; ++i) {
        const auto row = std::find_if(ModeRows.begin(), ModeRows.end(), [&](const ModeRow& mode) {
            return mode.mark == sequence.mark && mode.number == sequence.values[i];
        });
        if (row == ModeRows.end()) continue;
        mModes.*row->mode = on;
        if (row->mode == &Modes::origin) HomeCursor();
        if (row->mode == &Modes::autoWrap && !on) CursorMoved();
    }
}

void Screen::SoftResetSequence(const ControlSequence&) {
    SoftReset();
}

} // namespace qncomm::terminal

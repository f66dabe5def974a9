// Printing, moving and scrolling; the control sequences stand in ScreenControls.cpp.

#include "Screen.h"

#include <algorithm>
#include <utility>

namespace qncomm::terminal {
namespace {

constexpr std::uint16_t TabWidth = 8;

} // namespace

Screen::Screen(std::uint16_t rows, std::uint16_t columns, std::size_t scrollbackLines)
    : mGrid(rows, columns),
      mScrollback(scrollbackLines, columns),
      mBottom(static_cast<std::uint16_t>(rows - 1)),
      mTabs(columns) {
    ResetTabs(0);
}

// -- Printing

void Screen::Print(std::string_view text) {
    mLastPrinted = text.back();
    while (!text.empty())
        PrintPiece(text);
}

void Screen::PrintPiece(std::string_view& text) {
    if (mCursor.wrapNext) WrapLine();
    const std::size_t space = std::size_t{mGrid.Columns()} - mCursor.column;
    std::string_view piece = text.substr(0, space);
    text.remove_prefix(piece.size());
    GridRow row = mGrid.Row(mCursor.row);
    const auto length = static_cast<std::uint16_t>(piece.size());
    if (mModes.insert) row.Insert(mCursor.column, length, Blank());
    row.Put(mCursor.column, piece, mCursor.style);
    if (length < space) {
        mCursor.column = static_cast<std::uint16_t>(mCursor.column + length);
        return;
    }
    mCursor.column = LastColumn();
    mCursor.wrapNext = mModes.autoWrap;
    if (mModes.autoWrap || text.empty()) return;
    row.Put(mCursor.column, text.substr(text.size() - 1), mCursor.style);
    text = {};
}

void Screen::WrapLine() {
    mGrid.SetWrapped(mCursor.row);
    mCursor.column = 0;
    Index();
}

// -- Moving and scrolling

void Screen::MoveTo(int row, int column) {
    mCursor.row = static_cast<std::uint16_t>(std::clamp<int>(row, 0, LastRow()));
    mCursor.column = static_cast<std::uint16_t>(std::clamp<int>(column, 0, LastColumn()));
    CursorMoved();
}

void Screen::LineFeed() {
    if (mModes.newLine) mCursor.column = 0;
    Index();
}

void Screen::Index() {
    CursorMoved();
    if (mCursor.row == mBottom)
        ScrollOff(1);
    else if (mCursor.row < LastRow())
        ++mCursor.row;
}

void Screen::ReverseIndex() {
    CursorMoved();
    if (mCursor.row == mTop)
        mGrid.ScrollDown(mTop, mBottom, 1, Blank());
    else if (mCursor.row > 0)
        --mCursor.row;
}

void Screen::ScrollOff(std::uint16_t count) {
    count = std::min(count, MarginHeight());
    // What leaves in the middle of the screen is gone; only the top edge leads to the scroll-back.
    if (mTop == 0)
        for (std::uint16_t row = 0; row < count; ++row)
            mScrollback.Append(mGrid.View(row));
    mGrid.ScrollUp(mTop, mBottom, count, Blank());
}

void Screen::NextTab() {
    std::uint16_t column = mCursor.column;
    while (column < LastColumn() && !mTabs[++column]) {
    }
    mCursor.column = column;
    CursorMoved();
}

void Screen::ResetTabs(std::uint16_t from) {
    for (std::size_t column = from; column < mTabs.size(); ++column)
        mTabs[column] = column % TabWidth == 0;
}

// -- Saving, resetting, resizing

void Screen::Save() {
    mSaved = {mCursor, mModes.origin, mModes.autoWrap};
}

void Screen::Restore() {
    mModes.origin = mSaved.origin;
    mModes.autoWrap = mSaved.autoWrap;
    mCursor = mSaved.cursor;
}

void Screen::SoftReset() {
    mModes = {};
    mCursor.style = {};
    mSaved = {};
    mTop = 0;
    mBottom = LastRow();
    CursorMoved();
}

void Screen::Reset() {
    SoftReset();
    mCursor = {};
    mLastPrinted = ' ';
    ResetTabs(0);
    mGrid.ClearAll(Style());
}

void Screen::Resize(std::uint16_t rows, std::uint16_t columns) {
    mScrollback.Widen(columns);
    const auto leaving = static_cast<std::uint16_t>(std::max(0, mCursor.row + 1 - rows));
    Grid resized = mGrid.Resized(rows, columns, leaving);
    const std::size_t oldColumns = mTabs.size();
    mTabs.resize(columns);
    if (columns > oldColumns) ResetTabs(static_cast<std::uint16_t>(oldColumns));
    for (std::uint16_t row = 0; row < leaving; ++row)
        mScrollback.Append(mGrid.View(row));
    mGrid = std::move(resized);
    mTop = 0;
    mBottom = LastRow();
    MoveTo(mCursor.row - leaving, mCursor.column);
    mSaved.cursor.row = std::min(mSaved.cursor.row, LastRow());
    mSaved.cursor.column = std::min(mSaved.cursor.column, LastColumn());
    mSaved.cursor.wrapNext = false;
}

// -- Reading

std::string Screen::Text() const {
    std::string text;
    text.reserve((std::size_t{mGrid.Columns()} + 2) * mGrid.Rows());
    bool blank = true;
    for (std::uint16_t row = 0; row < mGrid.Rows(); ++row) {
        const std::string_view used = mGrid.View(row).text;
        blank = blank && used.find_first_not_of(' ') == std::string_view::npos;
        if (row > 0) text += "\r\n";
        text += used;
        text.append(mGrid.Columns() - used.size(), ' ');
    }
    return blank ? std::string() : text;
}

bool Screen::TakeBell() {
    return std::exchange(mBell, false);
}

} // namespace qncomm::terminal

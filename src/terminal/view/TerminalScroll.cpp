#include "terminal/view/TerminalScroll.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qncomm {

// -- Where it stands

void TerminalScroll::SetSize(int rows, int columns) {
    mRows = std::max(1, rows);
    mColumns = std::max(1, columns);
    Place();
}

bool TerminalScroll::Shows(std::uint64_t line) const {
    return line >= mTop && line <= mTop + static_cast<std::uint64_t>(mRows);
}

std::uint64_t TerminalScroll::LastTop() const {
    const std::uint64_t begin = mText.Begin();
    const auto rows = static_cast<std::uint64_t>(mRows);
    const std::uint64_t screenRows = mText.End() - mText.ScreenBegin();
    const std::uint64_t end =
        std::max(mContentEnd, mText.ScreenBegin() + std::min(rows, screenRows));
    return end > begin + rows ? end - rows : begin;
}

std::size_t TerminalScroll::LastLeft() const {
    const auto columns = static_cast<std::size_t>(mColumns);
    return std::max(mWidest > columns ? mWidest - columns : 0, mLeft);
}

// -- What changes on the screen

bool TerminalScroll::Update(const terminal::Damage& damage) {
    const std::uint64_t former = std::exchange(mScreenBegin, mText.ScreenBegin());
    TrackEnd(damage);
    Place();
    return mScreenBegin - former != damage.scrolled;
}

void TerminalScroll::TrackEnd(const terminal::Damage& damage) {
    const std::uint64_t least = mText.CursorLine() + 1;
    std::uint64_t end = mContentEnd;
    if (!damage.rows.empty()) end = std::max(end, mScreenBegin + damage.rows.back());
    end = std::clamp(end, least, mText.End());
    while (end > least && mText.IsBlank(end - 1))
        --end;
    mContentEnd = end;
}

/// Follows, or stays where it is as far as the oldest lines are still kept.
void TerminalScroll::Place() {
    if (mFollows)
        FollowCursor();
    else
        MoveTo(mTop);
    MeasureWidth();
}

void TerminalScroll::FollowCursor() {
    const std::uint64_t line = mText.CursorLine();
    MoveTo(std::min(LastTop(), line));
    if (!mTypedOn) return;
    // What is typed stays in view to the right; the next line starts at the left edge again.
    const bool sameLine = *mTypedOn == line;
    const std::size_t column = sameLine ? mText.CursorColumn() : 0;
    const auto columns = static_cast<std::size_t>(mColumns);
    if (column < columns)
        mLeft = 0;
    else if (column < mLeft || column >= mLeft + columns)
        mLeft = column - columns / 2;
    if (!sameLine) mTypedOn.reset();
}

void TerminalScroll::MoveTo(std::uint64_t top) {
    mTop = std::clamp(top, mText.Begin(), LastTop());
}

void TerminalScroll::MeasureWidth() {
    for (std::uint64_t line = mTop; line < mTop + static_cast<std::uint64_t>(mRows); ++line)
        mWidest = std::max(mWidest, mText.Line(line).text.size());
}

// -- What the user does

void TerminalScroll::ScrollTo(std::uint64_t top) {
    mFollows = top >= LastTop();
    MoveTo(top);
    MeasureWidth();
}

void TerminalScroll::ScrollBy(std::int64_t lines) {
    const auto begin = static_cast<std::int64_t>(mText.Begin());
    const std::int64_t top = static_cast<std::int64_t>(mTop) + lines;
    ScrollTo(static_cast<std::uint64_t>(std::max(begin, top)));
}

void TerminalScroll::PageBy(int pages) {
    ScrollBy(std::int64_t{pages} * std::max(1, mRows - 1));
}

void TerminalScroll::ScrollToEnd() {
    mFollows = true;
    Place();
}

void TerminalScroll::ScrollToLine(std::uint64_t line) {
    const auto rows = static_cast<std::uint64_t>(mRows);
    if (line >= mTop && line < mTop + rows) return;
    const std::uint64_t older = line - std::min(line, mText.Begin());
    ScrollTo(line - std::min(rows / 2, older));
}

void TerminalScroll::ScrollColumnsBy(std::int64_t columns) {
    const std::int64_t most = static_cast<std::int64_t>(mWidest) - mColumns;
    const std::int64_t left = static_cast<std::int64_t>(mLeft) + columns;
    mLeft = static_cast<std::size_t>(
        std::clamp<std::int64_t>(left, 0, std::max<std::int64_t>(most, 0)));
}

void TerminalScroll::ShowColumns(std::size_t from, std::size_t to) {
    const auto columns = static_cast<std::size_t>(mColumns);
    if (from < mLeft || to > mLeft + columns) mLeft = to <= columns ? 0 : from;
}

void TerminalScroll::KeyTyped() {
    mTypedOn = mText.CursorLine();
    if (!mFollows) ScrollToEnd();
}

TextPosition TerminalScroll::PositionAt(double row, double column, bool bBetweenCells) const {
    const auto least = static_cast<std::int64_t>(mText.Begin());
    const std::int64_t most = static_cast<std::int64_t>(mContentEnd) - 1;
    const std::int64_t line =
        static_cast<std::int64_t>(mTop) + static_cast<std::int64_t>(std::floor(row));
    const double cells = column + static_cast<double>(mLeft);
    const double edge = bBetweenCells ? std::round(cells) : std::floor(cells);
    return {static_cast<std::uint64_t>(std::clamp(line, least, most)),
            static_cast<std::size_t>(std::clamp(edge, 0.0, static_cast<double>(mText.Width())))};
}

} // namespace qncomm

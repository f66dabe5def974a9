// Which part of the text is in view.

#include "TerminalViewParts.h"

#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace qncomm {

void TerminalView::LayOut() {
    Parts& p = *mParts;
    const QSize size = viewport()->size();
    p.rows = std::max(1, static_cast<int>((size.height() - Parts::PadTop) / p.font.Height()));
    p.columns = std::max(1, static_cast<int>((size.width() - Parts::PadLeft) / p.font.Width()));
    if (p.follows)
        FollowCursor();
    else
        ScrollTo(p.top, false);
    UpdateScrollBars();
}

/// The line at the top when the end of the text is at the bottom. A screen that was cleared is
/// shown from its first row, empty as it is below, and not what has scrolled off it.
std::uint64_t TerminalView::LastTop() const {
    const Parts& p = *mParts;
    const std::uint64_t begin = p.text.Begin();
    const auto rows = static_cast<std::uint64_t>(p.rows);
    const auto screenRows = static_cast<std::uint64_t>(p.grid.Rows());
    const std::uint64_t end =
        std::max(p.contentEnd, p.text.ScreenBegin() + std::min(rows, screenRows));
    return end > begin + rows ? end - rows : begin;
}

void TerminalView::FollowCursor() {
    Parts& p = *mParts;
    const std::uint64_t line = p.text.CursorLine();
    ScrollTo(std::min(LastTop(), line), false);
    if (!p.typedOn) return;
    // What is typed stays in view to the right; the next line starts at the left edge again.
    const std::size_t column = *p.typedOn == line ? p.text.CursorColumn() : 0;
    const auto columns = static_cast<std::size_t>(p.columns);
    std::size_t left = p.left;
    if (column < columns)
        left = 0;
    else if (column < left || column >= left + columns)
        left = column - columns / 2;
    if (*p.typedOn != line) p.typedOn.reset();
    if (left == p.left) return;
    p.left = left;
    viewport()->update();
}

void TerminalView::ScrollTo(std::uint64_t top, bool byPerson) {
    Parts& p = *mParts;
    const std::uint64_t last = LastTop();
    if (byPerson) p.follows = top >= last;
    top = std::clamp(top, p.text.Begin(), last);
    const auto delta = static_cast<std::int64_t>(top - p.top);
    if (delta == 0) return;
    p.top = top;
    const bool wholePixels = std::floor(p.devicePixels) == p.devicePixels;
    if (std::abs(delta) >= p.rows || !wholePixels || p.bellTimer.isActive()) {
        viewport()->update();
        return;
    }
    const QRect text = viewport()->rect().adjusted(0, Parts::PadTop, 0, 0);
    viewport()->scroll(0, static_cast<int>(-delta) * RowHeight(), text);
}

void TerminalView::UpdateScrollBars() {
    Parts& p = *mParts;
    if (p.settingBars) return;
    p.settingBars = true;
    const std::uint64_t begin = p.text.Begin();
    const std::uint64_t last = std::max(LastTop(), p.top);
    verticalScrollBar()->setPageStep(p.rows);
    verticalScrollBar()->setRange(0, static_cast<int>(last - begin));
    verticalScrollBar()->setValue(static_cast<int>(p.top - begin));
    for (std::uint64_t line = p.top; line < p.top + static_cast<std::uint64_t>(p.rows); ++line)
        p.widest = std::max(p.widest, p.text.Line(line).text.size());
    const int hidden = static_cast<int>(std::max(p.widest, p.left)) - p.columns;
    horizontalScrollBar()->setPageStep(p.columns);
    horizontalScrollBar()->setRange(0, std::max(0, std::max(hidden, static_cast<int>(p.left))));
    horizontalScrollBar()->setValue(static_cast<int>(p.left));
    p.settingBars = false;
}

void TerminalView::scrollContentsBy(int /*dx*/, int /*dy*/) {
    Parts& p = *mParts;
    if (p.settingBars) return;
    const auto left = static_cast<std::size_t>(horizontalScrollBar()->value());
    if (std::exchange(p.left, left) != left) viewport()->update();
    const auto offset = static_cast<std::uint64_t>(verticalScrollBar()->value());
    ScrollTo(p.text.Begin() + offset, true);
    UpdateCursorCell();
}

void TerminalView::ScrollToEnd() {
    mParts->follows = true;
    FollowCursor();
    UpdateScrollBars();
}

void TerminalView::ScrollToLine(std::uint64_t line) {
    Parts& p = *mParts;
    const auto rows = static_cast<std::uint64_t>(p.rows);
    if (line < p.top || line >= p.top + rows)
        ScrollTo(line - std::min(rows / 2, line - std::min(line, p.text.Begin())), true);
    UpdateScrollBars();
}

void TerminalView::PageBy(int pages) {
    Parts& p = *mParts;
    const auto page = static_cast<std::int64_t>(std::max(1, p.rows - 1));
    const auto begin = static_cast<std::int64_t>(p.text.Begin());
    const std::int64_t top = std::max(begin, static_cast<std::int64_t>(p.top) + pages * page);
    ScrollTo(static_cast<std::uint64_t>(top), true);
    UpdateScrollBars();
}

std::uint64_t TerminalView::TopLine() const {
    return mParts->top;
}

bool TerminalView::Follows() const {
    return mParts->follows;
}

QRect TerminalView::CellRect(std::uint64_t line, std::size_t column) const {
    const Parts& p = *mParts;
    const auto row = static_cast<std::int64_t>(line - p.top);
    const qreal left =
        Parts::PadLeft + (static_cast<qreal>(column) - static_cast<qreal>(p.left)) * p.font.Width();
    const QRectF cell(left, Parts::PadTop + static_cast<qreal>(row) * p.font.Height(),
                      p.font.Width(), p.font.Height());
    return cell.toAlignedRect();
}

QRect TerminalView::CursorRect() const {
    return CellRect(mParts->text.CursorLine(), mParts->text.CursorColumn());
}

/// Has a line painted anew where it is in view.
void TerminalView::UpdateLine(std::uint64_t line) {
    const Parts& p = *mParts;
    if (line < p.top || line > p.top + static_cast<std::uint64_t>(p.rows)) return;
    QRect row = CellRect(line, 0);
    row.setLeft(0);
    row.setRight(viewport()->width());
    viewport()->update(row);
}

/// The cursor is painted where it is now and no longer where it was.
void TerminalView::UpdateCursorCell() {
    Parts& p = *mParts;
    const TextPosition now{p.text.CursorLine(), p.text.CursorColumn()};
    const bool moved = now != p.cursor;
    if (moved) UpdateLine(std::exchange(p.cursor, now).line);
    UpdateLine(now.line);
    if (!moved) return;
    RestartBlink();
    updateMicroFocus(Qt::ImCursorRectangle);
}

} // namespace qncomm

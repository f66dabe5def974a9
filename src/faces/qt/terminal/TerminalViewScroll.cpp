// How the picture and the scroll bars follow which part of the text is in view.

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
    p.scroll.SetSize(static_cast<int>((size.height() - Parts::PadTop) / p.font.Height()),
                     static_cast<int>((size.width() - Parts::PadLeft) / p.font.Width()));
    ShowScroll();
}

/// Brings the picture and the bars to where the text has scrolled.
void TerminalView::ShowScroll() {
    PaintScroll();
    UpdateScrollBars();
}

/// Moves the picture along with the text, or has it painted anew where that cannot be.
void TerminalView::PaintScroll() {
    Parts& p = *mParts;
    const std::uint64_t top = p.scroll.Top();
    const auto delta = static_cast<std::int64_t>(top - std::exchange(p.paintedTop, top));
    const bool sideways = std::exchange(p.paintedLeft, p.scroll.Left()) != p.scroll.Left();
    if (delta == 0 && !sideways) return;
    const bool wholePixels = std::floor(p.devicePixels) == p.devicePixels;
    const bool beyond = std::abs(delta) >= p.scroll.Rows();
    if (sideways || beyond || !wholePixels || p.bellTimer.isActive()) {
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
    const TerminalScroll& scroll = p.scroll;
    const std::uint64_t begin = p.text.Begin();
    const std::uint64_t last = std::max(scroll.LastTop(), scroll.Top());
    verticalScrollBar()->setPageStep(scroll.Rows());
    verticalScrollBar()->setRange(0, static_cast<int>(last - begin));
    verticalScrollBar()->setValue(static_cast<int>(scroll.Top() - begin));
    horizontalScrollBar()->setPageStep(scroll.Columns());
    horizontalScrollBar()->setRange(0, static_cast<int>(scroll.LastLeft()));
    horizontalScrollBar()->setValue(static_cast<int>(scroll.Left()));
    p.settingBars = false;
}

void TerminalView::scrollContentsBy(int /*dx*/, int /*dy*/) {
    Parts& p = *mParts;
    if (p.settingBars) return;
    p.scroll.ScrollToColumn(static_cast<std::size_t>(horizontalScrollBar()->value()));
    p.scroll.ScrollTo(p.text.Begin() + static_cast<std::uint64_t>(verticalScrollBar()->value()));
    PaintScroll();
    UpdateCursorCell();
}

void TerminalView::ScrollToEnd() {
    mParts->scroll.ScrollToEnd();
    ShowScroll();
}

void TerminalView::ScrollToLine(std::uint64_t line) {
    mParts->scroll.ScrollToLine(line);
    ShowScroll();
}

std::uint64_t TerminalView::TopLine() const {
    return mParts->scroll.Top();
}

bool TerminalView::Follows() const {
    return mParts->scroll.Follows();
}

QRect TerminalView::CellRect(std::uint64_t line, std::size_t column) const {
    const Parts& p = *mParts;
    const auto row = static_cast<std::int64_t>(line - p.scroll.Top());
    const qreal left =
        Parts::PadLeft
        + (static_cast<qreal>(column) - static_cast<qreal>(p.scroll.Left())) * p.font.Width();
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
    if (!p.scroll.Shows(line)) return;
    QRect row = CellRect(line, 0);
    row.setLeft(0);
    row.setRight(viewport()->width());
    viewport()->update(row);
}

/// The cursor is painted where it is now and no longer where it was.
void TerminalView::UpdateCursorCell() {
    Parts& p = *mParts;
    const TextPosition now{p.text.CursorLine(), p.text.CursorColumn()};
    const bool moved = now != p.paintedCursor;
    if (moved) UpdateLine(std::exchange(p.paintedCursor, now).line);
    UpdateLine(now.line);
    if (!moved) return;
    RestartBlink();
    updateMicroFocus(Qt::ImCursorRectangle);
}

} // namespace qncomm

// What the user does with the mouse.

#include "TerminalViewParts.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace qncomm {
namespace {

constexpr int DragScrollMs = 50;
constexpr int NotchUnits = 120;
constexpr int LinesPerNotch = 3;

} // namespace

/// The place under a point of the viewport: the nearest edge between two cells, or the left edge of
/// the cell itself.
TextPosition TerminalView::Parts::PositionAt(const QPoint& at, bool betweenCells) const {
    const auto row = static_cast<std::int64_t>(std::floor((at.y() - PadTop) / font.Height()));
    const auto least = static_cast<std::int64_t>(text.Begin());
    const auto most = static_cast<std::int64_t>(contentEnd) - 1;
    const std::int64_t line = std::clamp(static_cast<std::int64_t>(top) + row, least, most);
    const qreal cells = (at.x() - PadLeft) / font.Width() + static_cast<qreal>(left);
    const qreal column = betweenCells ? std::round(cells) : std::floor(cells);
    const auto width = static_cast<qreal>(grid.Columns());
    return {static_cast<std::uint64_t>(line),
            static_cast<std::size_t>(std::clamp(column, 0.0, width))};
}

TextPosition TerminalView::PositionAt(const QPoint& at) const {
    return mParts->PositionAt(at, false);
}

void TerminalView::mousePressEvent(QMouseEvent* event) {
    Parts& p = *mParts;
    event->accept();
    if (event->button() == Qt::RightButton) p.input.MenuAsked();
    if (event->button() != Qt::LeftButton) return;
    using Kind = TerminalSelection::Kind;
    const QPoint at = event->position().toPoint();
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const bool third = p.sinceDoubleClick.isValid()
                       && p.sinceDoubleClick.elapsed() < hints.mouseDoubleClickInterval()
                       && (at - p.doubleClickAt).manhattanLength() < hints.startDragDistance();
    p.sinceDoubleClick.invalidate();
    p.dragging = true;
    p.dragAt = at;
    if (event->modifiers().testFlag(Qt::ShiftModifier) && !p.selection.Untouched())
        p.selection.ExtendTo(p.text, p.PositionAt(at, p.selection.IsByCells()));
    else if (third)
        p.selection.Start(p.text, p.PositionAt(at, false), Kind::Lines);
    else
        p.selection.Start(p.text, p.PositionAt(at, true),
                          event->modifiers().testFlag(Qt::AltModifier) ? Kind::Block : Kind::Cells);
    viewport()->update();
    emit selectionChanged();
}

void TerminalView::mouseDoubleClickEvent(QMouseEvent* event) {
    Parts& p = *mParts;
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    event->accept();
    p.doubleClickAt = event->position().toPoint();
    p.sinceDoubleClick.start();
    p.dragging = true;
    p.dragAt = p.doubleClickAt;
    p.selection.Start(p.text, p.PositionAt(p.doubleClickAt, false), TerminalSelection::Kind::Words);
    viewport()->update();
    emit selectionChanged();
}

void TerminalView::mouseMoveEvent(QMouseEvent* event) {
    Parts& p = *mParts;
    if (!p.dragging) return;
    event->accept();
    DragTo(event->position().toPoint());
    // Beyond the edge the text goes on scrolling while the mouse rests.
    const bool outside = p.dragAt.y() < 0 || p.dragAt.y() >= viewport()->height();
    if (!outside)
        p.dragTimer.stop();
    else if (!p.dragTimer.isActive())
        p.dragTimer.start(DragScrollMs, this);
}

void TerminalView::DragTo(const QPoint& at) {
    Parts& p = *mParts;
    p.dragAt = at;
    if (at.y() < 0 && p.top > p.text.Begin()) ScrollTo(p.top - 1, true);
    if (at.y() >= viewport()->height()) ScrollTo(p.top + 1, true);
    UpdateScrollBars();
    p.selection.ExtendTo(p.text, p.PositionAt(at, p.selection.IsByCells()));
    viewport()->update();
    emit selectionChanged();
}

void TerminalView::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    mParts->dragging = false;
    mParts->dragTimer.stop();
}

void TerminalView::wheelEvent(QWheelEvent* event) {
    Parts& p = *mParts;
    event->accept();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        p.wheelRest.ry() += event->angleDelta().y();
        ZoomBy(p.wheelRest.y() / NotchUnits);
        p.wheelRest.ry() %= NotchUnits;
        return;
    }
    p.wheelRest += event->angleDelta() * LinesPerNotch;
    const QPoint steps = p.wheelRest / NotchUnits;
    p.wheelRest -= steps * NotchUnits;
    const std::int64_t top = static_cast<std::int64_t>(p.top) - steps.y();
    const auto begin = static_cast<std::int64_t>(p.text.Begin());
    if (steps.y() != 0) ScrollTo(static_cast<std::uint64_t>(std::max(top, begin)), true);
    const std::int64_t left = static_cast<std::int64_t>(p.left) - steps.x();
    const auto most = static_cast<std::int64_t>(p.widest) - p.columns;
    const auto column = static_cast<std::size_t>(
        std::clamp<std::int64_t>(left, 0, std::max<std::int64_t>(most, 0)));
    if (steps.x() != 0 && std::exchange(p.left, column) != column) viewport()->update();
    UpdateScrollBars();
}

void TerminalView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) mParts->input.MenuAsked();
}

// -- Selection

bool TerminalView::HasSelection() const {
    return !mParts->selection.Empty();
}

std::string TerminalView::SelectedText() const {
    return mParts->selection.Text(mParts->text);
}

std::pair<TextPosition, TextPosition> TerminalView::SelectionRange() const {
    if (!HasSelection()) return {};
    return {mParts->selection.From(), mParts->selection.To()};
}

void TerminalView::Select(const TextPosition& from, const TextPosition& to) {
    mParts->selection.Mark(from, to);
    viewport()->update();
    emit selectionChanged();
}

void TerminalView::SelectAll() {
    const Parts& p = *mParts;
    Select({p.text.Begin(), 0}, {p.contentEnd - 1, static_cast<std::size_t>(p.grid.Columns())});
}

void TerminalView::ClearSelection() {
    if (mParts->selection.Empty()) return;
    mParts->selection.Clear();
    viewport()->update();
    emit selectionChanged();
}

} // namespace qncomm

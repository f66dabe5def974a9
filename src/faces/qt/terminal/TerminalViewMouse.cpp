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

QPointF TerminalView::Parts::CellsAt(const QPoint& at) const {
    return {(at.x() - PadLeft) / font.Width(), (at.y() - PadTop) / font.Height()};
}

TextPosition TerminalView::Parts::PositionAt(const QPoint& at, bool betweenCells) const {
    const QPointF cells = CellsAt(at);
    return scroll.PositionAt(cells.y(), cells.x(), betweenCells);
}

void TerminalView::Parts::StartSelection(const QPoint& at, int presses, bool block) {
    const TerminalSelection::Kind kind = TerminalSelection::KindOf(presses, block);
    selection.Start(text, PositionAt(at, TerminalSelection::IsByCells(kind)), kind);
}

TextPosition TerminalView::PositionAt(const QPoint& at) const {
    return mParts->PositionAt(at, false);
}

void TerminalView::mousePressEvent(QMouseEvent* event) {
    Parts& p = *mParts;
    event->accept();
    if (event->button() == Qt::RightButton) p.input.MenuAsked();
    if (event->button() != Qt::LeftButton) return;
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
    else
        p.StartSelection(at, third ? 3 : 1, event->modifiers().testFlag(Qt::AltModifier));
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
    p.StartSelection(p.doubleClickAt, 2, false);
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
    if (at.y() < 0 && p.scroll.Top() > p.text.Begin()) p.scroll.ScrollBy(-1);
    if (at.y() >= viewport()->height()) p.scroll.ScrollBy(1);
    ShowScroll();
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
    if (steps.y() != 0) p.scroll.ScrollBy(-steps.y());
    if (steps.x() != 0) p.scroll.ScrollColumnsBy(-steps.x());
    ShowScroll();
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
    Select({p.text.Begin(), 0}, {p.scroll.ContentEnd() - 1, p.text.Width()});
}

void TerminalView::ClearSelection() {
    if (mParts->selection.Empty()) return;
    mParts->selection.Clear();
    viewport()->update();
    emit selectionChanged();
}

} // namespace qncomm

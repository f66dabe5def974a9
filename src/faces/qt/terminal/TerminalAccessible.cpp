#include "TerminalAccessible.h"

#include "TerminalView.h"

namespace qncomm {
namespace {

QAccessibleInterface* MakeTerminalInterface(const QString& /*className*/, QObject* object) {
    auto* view = qobject_cast<TerminalView*>(object);
    return view == nullptr ? nullptr : new TerminalAccessible(*view);
}

} // namespace

void InstallTerminalAccessibility() {
    QAccessible::installFactory(MakeTerminalInterface); // which knows those that it has
}

TerminalAccessible::TerminalAccessible(TerminalView& view)
    : QAccessibleWidget(&view, QAccessible::Terminal) {}

TerminalView& TerminalAccessible::View() const {
    return *static_cast<TerminalView*>(widget());
}

ReaderScreen TerminalAccessible::Screen() const {
    return View().ScreenForReaders();
}

void* TerminalAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString TerminalAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Value ? Screen().text : QAccessibleWidget::text(kind);
}

QAccessible::State TerminalAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.multiLine = true;
    state.selectableText = true;
    return state;
}

void TerminalAccessible::selection(int selectionIndex, int* startOffset, int* endOffset) const {
    const auto [from, to] = View().SelectionRange();
    const ReaderScreen screen = Screen();
    *startOffset = selectionIndex == 0 ? screen.OffsetOf(from) : 0;
    *endOffset = selectionIndex == 0 ? screen.OffsetOf(to) : 0;
}

int TerminalAccessible::selectionCount() const {
    return View().HasSelection() ? 1 : 0;
}

void TerminalAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void TerminalAccessible::removeSelection(int /*selectionIndex*/) {
    View().ClearSelection();
}

void TerminalAccessible::setSelection(int selectionIndex, int startOffset, int endOffset) {
    if (selectionIndex != 0) return;
    const ReaderScreen screen = Screen();
    View().Select(screen.PositionOf(startOffset), screen.PositionOf(endOffset));
}

int TerminalAccessible::cursorPosition() const {
    return Screen().cursor;
}

void TerminalAccessible::setCursorPosition(int /*position*/) {
    // The cursor is the printer's.
}

QString TerminalAccessible::text(int startOffset, int endOffset) const {
    return Screen().text.mid(startOffset, endOffset - startOffset);
}

int TerminalAccessible::characterCount() const {
    return static_cast<int>(Screen().text.size());
}

QRect TerminalAccessible::characterRect(int offset) const {
    const TextPosition place = Screen().PositionOf(offset);
    const QRect cell = View().CellRect(place.line, place.column);
    return {View().viewport()->mapToGlobal(cell.topLeft()), cell.size()};
}

int TerminalAccessible::offsetAtPoint(const QPoint& point) const {
    return Screen().OffsetOf(View().PositionAt(View().viewport()->mapFromGlobal(point)));
}

void TerminalAccessible::scrollToSubstring(int startIndex, int /*endIndex*/) {
    View().ScrollToLine(Screen().PositionOf(startIndex).line);
}

QString TerminalAccessible::attributes(int /*offset*/, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}

} // namespace qncomm

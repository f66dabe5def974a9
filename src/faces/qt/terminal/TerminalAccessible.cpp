#include "TerminalAccessible.h"

#include "TerminalView.h"

#include <utility>

namespace qncomm {
namespace {

QAccessibleInterface* MakeTerminalInterface(const QString& /*className*/, QObject* object) {
    auto* view = qobject_cast<TerminalView*>(object);
    return view == nullptr ? nullptr : new TerminalAccessible(*view);
}

void TellChange(QWidget& view, const TextChange& change) {
    const QString text = QString::fromStdU16String(change.text);
    if (change.inserted) {
        QAccessibleTextInsertEvent event(&view, change.at, text);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextRemoveEvent event(&view, change.at, text);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace

void InstallTerminalAccessibility() {
    QAccessible::installFactory(MakeTerminalInterface); // which knows those that it has
}

void TerminalReaders::Tell(QWidget& view, const TerminalText& text, std::uint64_t contentEnd) {
    const bool wasActive = std::exchange(mActive, QAccessible::isActive());
    if (!mActive) return;
    const int cursor = mScreen.Cursor();
    const std::vector<TextChange> changes = mScreen.Follow(ReaderScreenOf(text, contentEnd));
    if (!wasActive) return; // a program that has just started reads the whole screen
    for (const TextChange& change : changes)
        TellChange(view, change);
    if (mScreen.Cursor() == cursor && changes.empty()) return;
    QAccessibleTextCursorEvent event(&view, mScreen.Cursor());
    QAccessible::updateAccessibility(&event);
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
    return kind == QAccessible::Value ? QString::fromStdU16String(Screen().text)
                                      : QAccessibleWidget::text(kind);
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
    return QString::fromStdU16String(Screen().text).mid(startOffset, endOffset - startOffset);
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

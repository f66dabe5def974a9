#include "ScreenReaderText.h"

#include "qt/Charset.h"

#include <QAccessible>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

/// How many characters both texts have in common at the start.
int CommonStart(QStringView one, QStringView other) {
    const auto end = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<int>(end.first - one.begin());
}

int CommonEnd(QStringView one, QStringView other) {
    const auto end = std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend());
    return static_cast<int>(end.first - one.rbegin());
}

void TellChange(QWidget& view, const TextChange& change) {
    if (change.inserted) {
        QAccessibleTextInsertEvent event(&view, change.at, change.text);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextRemoveEvent event(&view, change.at, change.text);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace

TextPosition ReaderScreen::PositionOf(int offset) const {
    const auto behind = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    const auto index = std::max<qsizetype>(behind - lineStarts.begin() - 1, 0);
    return {firstLine + static_cast<std::uint64_t>(index),
            static_cast<std::size_t>(std::max(0, offset - lineStarts.value(index)))};
}

int ReaderScreen::OffsetOf(const TextPosition& position) const {
    if (position.line < firstLine) return 0;
    const auto index = static_cast<qsizetype>(position.line - firstLine);
    if (index >= lineStarts.size()) return static_cast<int>(text.size());
    const auto size = static_cast<int>(text.size());
    const int end = index + 1 < lineStarts.size() ? lineStarts[index + 1] - 1 : size;
    return std::min(lineStarts[index] + static_cast<int>(position.column), end);
}

ReaderScreen ReaderScreenOf(const TerminalText& text, std::uint64_t contentEnd) {
    ReaderScreen screen;
    screen.firstLine = text.ScreenBegin();
    for (std::uint64_t number = screen.firstLine; number < contentEnd; ++number) {
        if (number > screen.firstLine) screen.text += u'\n';
        const auto start = static_cast<int>(screen.text.size());
        screen.lineStarts.push_back(start);
        std::string line = text.Line(number).text;
        line.resize(line.find_last_not_of(' ') + 1); // npos + 1 is 0
        if (number == text.CursorLine()) {
            line.resize(std::max(line.size(), text.CursorColumn()), ' ');
            screen.cursor = start + static_cast<int>(text.CursorColumn());
        }
        screen.text += FromLine(line);
    }
    return screen;
}

std::vector<TextChange> ScreenReaderText::Follow(ReaderScreen now) {
    std::vector<TextChange> changes;
    const auto add = [&](int at, const QString& text, bool inserted) {
        if (!text.isEmpty()) changes.push_back({at, text, inserted});
    };
    QString before = mTold.text;
    if (now.firstLine > mTold.firstLine) {
        const int gone = mTold.OffsetOf({now.firstLine, 0});
        add(0, before.left(gone), false);
        before.remove(0, gone);
    }
    const int start = CommonStart(before, now.text);
    const int end = CommonEnd(QStringView(before).mid(start), QStringView(now.text).mid(start));
    add(start, before.mid(start, before.size() - start - end), false);
    add(start, now.text.mid(start, now.text.size() - start - end), true);
    mTold = std::move(now);
    return changes;
}

void ScreenReaderText::Tell(QWidget& view, const TerminalText& text, std::uint64_t contentEnd) {
    const bool wasActive = std::exchange(mActive, QAccessible::isActive());
    if (!mActive) return;
    const int cursor = mTold.cursor;
    const std::vector<TextChange> changes = Follow(ReaderScreenOf(text, contentEnd));
    if (!wasActive) return; // whoever has just come reads the whole screen
    for (const TextChange& change : changes)
        TellChange(view, change);
    if (mTold.cursor == cursor && changes.empty()) return;
    QAccessibleTextCursorEvent event(&view, mTold.cursor);
    QAccessible::updateAccessibility(&event);
}

} // namespace qncomm

#include "terminal/view/ScreenReaderText.h"

#include "common/Windows1252.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace qncomm {
namespace {

/// How many characters both texts have in common at the start.
std::size_t CommonStart(std::u16string_view one, std::u16string_view other) {
    const auto end = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<std::size_t>(end.first - one.begin());
}

std::size_t CommonEnd(std::u16string_view one, std::u16string_view other) {
    const auto end = std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend());
    return static_cast<std::size_t>(end.first - one.rbegin());
}

} // namespace

TextPosition ReaderScreen::PositionOf(int offset) const {
    if (lineStarts.empty()) return {firstLine, 0};
    const auto behind = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    const auto start = behind == lineStarts.begin() ? behind : std::prev(behind);
    return {firstLine + static_cast<std::uint64_t>(start - lineStarts.begin()),
            static_cast<std::size_t>(std::max(0, offset - *start))};
}

int ReaderScreen::OffsetOf(const TextPosition& position) const {
    if (position.line < firstLine) return 0;
    const auto size = static_cast<int>(text.size());
    const std::uint64_t index = position.line - firstLine;
    if (index >= lineStarts.size()) return size;
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
        screen.text += CharactersOf(line);
    }
    return screen;
}

std::vector<TextChange> ScreenReaderText::Follow(ReaderScreen now) {
    std::vector<TextChange> changes;
    const auto add = [&](int at, std::u16string_view text, bool inserted) {
        if (!text.empty()) changes.push_back({at, std::u16string(text), inserted});
    };
    std::u16string_view before = mTold.text;
    std::u16string_view after = now.text;
    if (now.firstLine > mTold.firstLine) {
        const auto gone = static_cast<std::size_t>(mTold.OffsetOf({now.firstLine, 0}));
        add(0, before.substr(0, gone), false);
        before.remove_prefix(gone);
    }
    const std::size_t start = CommonStart(before, after);
    before.remove_prefix(start);
    after.remove_prefix(start);
    const std::size_t end = CommonEnd(before, after);
    before.remove_suffix(end);
    after.remove_suffix(end);
    add(static_cast<int>(start), before, false);
    add(static_cast<int>(start), after, true);
    mTold = std::move(now);
    return changes;
}

} // namespace qncomm

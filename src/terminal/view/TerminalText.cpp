#include "terminal/view/TerminalText.h"

#include <algorithm>

namespace qncomm {
namespace {

/// No paragraph is read further than this many lines: a screen without line ends is one paragraph.
constexpr std::uint64_t LongestParagraph = 1000;

} // namespace

std::size_t Paragraph::OffsetOf(const TextPosition& position) const {
    if (position.line < first) return 0;
    const auto index = static_cast<std::size_t>(position.line - first);
    if (index >= starts.size()) return text.size();
    const std::size_t end = index + 1 < starts.size() ? starts[index + 1] : text.size();
    return std::min(starts[index] + position.column, std::max(end, starts[index]));
}

TextPosition Paragraph::PositionOf(std::size_t offset) const {
    const auto behind = std::upper_bound(starts.begin(), starts.end(), offset);
    const auto index = static_cast<std::size_t>(behind - starts.begin()) - 1;
    return {first + index, offset - starts[index]};
}

std::uint64_t TerminalText::End() const {
    return ScreenBegin() + static_cast<std::uint64_t>(mGrid.Rows());
}

std::uint64_t TerminalText::CursorLine() const {
    return ScreenBegin() + static_cast<std::uint64_t>(mGrid.CursorRow() - 1);
}

std::size_t TerminalText::CursorColumn() const {
    return static_cast<std::size_t>(std::max<int>(mGrid.CursorColumn() - 1, 0));
}

terminal::TerminalLine TerminalText::Line(std::uint64_t number) const {
    if (number < ScreenBegin()) return mGrid.ScrollbackLine(number);
    const std::uint64_t row = number - ScreenBegin() + 1;
    return row > static_cast<std::uint64_t>(mGrid.Rows())
               ? terminal::TerminalLine{}
               : mGrid.Row(static_cast<std::int16_t>(row));
}

bool TerminalText::IsBlank(std::uint64_t number) const {
    const terminal::TerminalLine line = Line(number);
    return line.text.find_first_not_of(' ') == std::string::npos && line.runs.empty()
           && line.fill.IsDefault();
}

Paragraph TerminalText::ParagraphAt(std::uint64_t number) const {
    Paragraph paragraph{number, {}, {}};
    const std::uint64_t least = std::max(Begin(), number - std::min(number, LongestParagraph));
    while (paragraph.first > least && Line(paragraph.first - 1).wrapped)
        --paragraph.first;
    for (std::uint64_t next = paragraph.first; next < End(); ++next) {
        const terminal::TerminalLine line = Line(next);
        paragraph.starts.push_back(paragraph.text.size());
        paragraph.text += line.text;
        if (!line.wrapped || next >= number + LongestParagraph) break;
    }
    if (paragraph.starts.empty()) paragraph.starts.push_back(0);
    const std::size_t last = paragraph.text.find_last_not_of(' ') + 1; // 0 when all are blanks
    paragraph.text.resize(std::max(last, paragraph.starts.back()));
    return paragraph;
}

} // namespace qncomm

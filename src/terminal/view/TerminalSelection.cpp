#include "terminal/view/TerminalSelection.h"

#include "terminal/view/Letters.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <tuple>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t LineEnd = std::numeric_limits<std::size_t>::max();
constexpr std::string_view PartsOfNames = "_-.:/\\~$%"; // "ram:name.prg" is one word

enum class CellClass { Blank, Name, Other };

CellClass ClassOf(char cell) {
    if (cell == ' ') return CellClass::Blank;
    const bool name = IsLetterOrNumber(cell) || PartsOfNames.find(cell) != std::string_view::npos;
    return name ? CellClass::Name : CellClass::Other;
}

using Span = std::pair<TextPosition, TextPosition>;

Span WordAt(const TerminalText& text, const TextPosition& at) {
    const Paragraph paragraph = text.ParagraphAt(at.line);
    const std::size_t offset = paragraph.OffsetOf(at);
    if (offset >= paragraph.text.size()) return {at, at};
    const CellClass wanted = ClassOf(paragraph.text[offset]);
    std::size_t from = offset;
    std::size_t to = offset + 1;
    while (from > 0 && ClassOf(paragraph.text[from - 1]) == wanted)
        --from;
    while (to < paragraph.text.size() && ClassOf(paragraph.text[to]) == wanted)
        ++to;
    TextPosition last = paragraph.PositionOf(to - 1);
    ++last.column; // the end stays on the line of the word's last cell
    return {paragraph.PositionOf(from), last};
}

Span LineAt(const TerminalText& text, const TextPosition& at) {
    const Paragraph paragraph = text.ParagraphAt(at.line);
    return {{paragraph.first, 0}, {paragraph.Last(), LineEnd}};
}

Span UnitAt(const TerminalText& text, const TextPosition& at, TerminalSelection::Kind kind) {
    if (kind == TerminalSelection::Kind::Words) return WordAt(text, at);
    if (kind == TerminalSelection::Kind::Lines) return LineAt(text, at);
    return {at, at};
}

void CutBlanks(std::string& text, std::size_t from) {
    const std::size_t last = text.find_last_not_of(' ');
    text.resize(last == std::string::npos || last < from ? from : last + 1);
}

} // namespace

void TerminalSelection::Start(const TerminalText& text, const TextPosition& at, Kind kind) {
    mUntouched = false;
    mKind = kind;
    std::tie(mFixedFrom, mFixedTo) = UnitAt(text, at, kind);
    mFrom = mFixedFrom;
    mTo = mFixedTo;
}

void TerminalSelection::ExtendTo(const TerminalText& text, const TextPosition& at) {
    const auto [from, to] = UnitAt(text, at, mKind);
    mFrom = std::min(from, mFixedFrom);
    mTo = std::max(to, mFixedTo);
    if (mKind != Kind::Block) return;
    // The corners of a rectangle: each coordinate by itself.
    const auto [left, right] = std::minmax(mFixedFrom.column, at.column);
    mFrom.column = left;
    mTo.column = right;
}

void TerminalSelection::Mark(const TextPosition& from, const TextPosition& to) {
    mUntouched = false;
    mKind = Kind::Cells;
    mFixedFrom = from;
    mFixedTo = from;
    mFrom = from;
    mTo = to;
}

TerminalSelection::Kind TerminalSelection::KindOf(int presses, bool bBlock) {
    if (presses >= 3) return Kind::Lines;
    if (presses == 2) return Kind::Words;
    return bBlock ? Kind::Block : Kind::Cells;
}

bool TerminalSelection::Outlives(const TerminalText& text, const terminal::Damage& damage,
                                 bool bRenumbered) const {
    if (mFrom.line < text.Begin()) return false;
    if (bRenumbered) return mTo.line < text.ScreenBegin();
    return std::ranges::none_of(damage.rows, [&](std::uint16_t row) {
        const std::uint64_t line = text.ScreenBegin() + row - 1;
        return line >= mFrom.line && line <= mTo.line;
    });
}

TerminalSelection::Columns TerminalSelection::On(std::uint64_t line, std::size_t width) const {
    if (Empty() || line < mFrom.line || line > mTo.line) return {};
    const bool block = mKind == Kind::Block;
    return {block || line == mFrom.line ? std::min(mFrom.column, width) : 0,
            block || line == mTo.line ? std::min(mTo.column, width) : width};
}

std::string TerminalSelection::Text(const TerminalText& text) const {
    std::string marked;
    if (Empty()) return marked;
    std::size_t lineStart = 0;
    for (std::uint64_t number = mFrom.line; number <= mTo.line; ++number) {
        const terminal::TerminalLine line = text.Line(number);
        const Columns columns = On(number, line.text.size());
        if (!columns.Empty()) marked.append(line.text, columns.from, columns.to - columns.from);
        if (number == mTo.line) break;
        if (line.wrapped && mKind != Kind::Block) continue;
        CutBlanks(marked, lineStart);
        marked += "\r\n";
        lineStart = marked.size();
    }
    CutBlanks(marked, lineStart);
    return marked;
}

} // namespace qncomm

#include "GridRow.h"

#include <algorithm>
#include <cstring>

namespace qncomm::terminal {

void GridRow::Put(std::uint16_t column, std::string_view text, Style style) {
    StoreUpTo(column);
    const auto count = static_cast<std::uint16_t>(text.size());
    std::memcpy(mText + column, text.data(), count);
    SetStyles(column, count, style);
}

void GridRow::Repeat(std::uint16_t column, std::uint16_t count, char character, Style style) {
    StoreUpTo(column);
    std::memset(mText + column, character, count);
    SetStyles(column, count, style);
}

void GridRow::Erase(std::uint16_t from, std::uint16_t to, Style blank) {
    mState.dirty = true;
    if (to < mColumns) {
        if (from >= mState.used && blank == mState.fill) return;
        Repeat(from, static_cast<std::uint16_t>(to - from), ' ', blank);
        return;
    }
    mState.wrapped = false;
    if (blank != mState.fill) {
        StoreUpTo(from);
        mState.fill = blank;
    }
    mState.used = std::min(mState.used, from);
    mState.styled = mState.styled && mState.used > 0;
}

void GridRow::Insert(std::uint16_t column, std::uint16_t count, Style blank) {
    mState.dirty = true;
    mState.wrapped = false;
    if (column >= mState.used && blank == mState.fill) return;
    StoreUpTo(column);
    const auto end = std::min<std::size_t>(mColumns, std::size_t{mState.used} + count);
    const std::size_t target = std::min<std::size_t>(mColumns, std::size_t{column} + count);
    const std::size_t moved = end - target;
    std::memmove(mText + target, mText + column, moved);
    if (mState.styled) std::memmove(mStyles + target, mStyles + column, moved * sizeof *mStyles);
    mState.used = static_cast<std::uint16_t>(end);
    Repeat(column, static_cast<std::uint16_t>(target - column), ' ', blank);
}

void GridRow::Delete(std::uint16_t column, std::uint16_t count, Style blank) {
    mState.dirty = true;
    mState.wrapped = false;
    if (column >= mState.used && blank == mState.fill) return;
    if (blank != mState.fill) StoreUpTo(mColumns);
    const std::size_t source = std::min<std::size_t>(mState.used, std::size_t{column} + count);
    const std::size_t moved = mState.used - source;
    std::memmove(mText + column, mText + source, moved);
    if (mState.styled) std::memmove(mStyles + column, mStyles + source, moved * sizeof *mStyles);
    const auto left = static_cast<std::uint16_t>(column + moved);
    Erase(left, mColumns, blank);
}

void GridRow::StoreUpTo(std::uint16_t column) {
    const std::uint16_t used = mState.used;
    if (column <= used) return;
    Repeat(used, static_cast<std::uint16_t>(column - used), ' ', mState.fill);
}

void GridRow::StoreStyles() {
    if (mState.styled) return;
    std::fill_n(mStyles, mState.used, Style().Bits());
    mState.styled = true;
}

void GridRow::SetStyles(std::uint16_t column, std::uint16_t count, Style style) {
    if (!style.IsDefault()) StoreStyles();
    if (mState.styled) std::fill_n(mStyles + column, count, style.Bits());
    mState.used = std::max(mState.used, static_cast<std::uint16_t>(column + count));
    mState.dirty = true;
}

TerminalLine ToLine(const RowView& row) {
    TerminalLine line{std::string(row.text), {}, row.fill, row.wrapped};
    if (row.styles == nullptr) return line;
    for (std::size_t at = 0; at < row.text.size(); ++at) {
        const Style style = Style::FromBits(row.styles[at]);
        if (line.runs.empty() || line.runs.back().style != style) line.runs.push_back({0, style});
        ++line.runs.back().length;
    }
    if (line.runs.size() == 1 && line.runs.front().style.IsDefault()) line.runs.clear();
    return line;
}

} // namespace qncomm::terminal

#include "Grid.h"

#include <algorithm>

namespace qncomm::terminal {

Grid::Grid(std::uint16_t rows, std::uint16_t columns)
    : mColumns(columns),
      mOrder(rows),
      mStates(rows),
      mText(std::make_unique_for_overwrite<char[]>(std::size_t{rows} * columns)),
      mStyles(std::make_unique_for_overwrite<std::uint64_t[]>(std::size_t{rows} * columns)) {}

RowView Grid::View(std::uint16_t row) const {
    const std::uint16_t slot = mOrder.SlotOf(row);
    const RowState& state = mStates[slot];
    const std::size_t at = std::size_t{slot} * mColumns;
    return {.text = {mText.get() + at, state.used},
            .styles = state.styled ? mStyles.get() + at : nullptr,
            .fill = state.fill,
            .wrapped = state.wrapped};
}

void Grid::ClearAll(Style blank) {
    for (RowState& state : mStates)
        state.Clear(blank);
}

void Grid::ScrollUp(std::uint16_t first, std::uint16_t last, std::uint16_t count, Style blank) {
    mOrder.RotateUp(first, last, count);
    for (std::uint16_t i = 0; i < count; ++i)
        Row(static_cast<std::uint16_t>(last - i)).Clear(blank);
    if (first == 0 && last + 1 == Rows())
        MarkScrolled(count);
    else
        MarkRows(first, last);
}

void Grid::ScrollDown(std::uint16_t first, std::uint16_t last, std::uint16_t count, Style blank) {
    mOrder.RotateDown(first, last, count);
    for (std::uint16_t i = 0; i < count; ++i)
        Row(static_cast<std::uint16_t>(first + i)).Clear(blank);
    MarkRows(first, last);
}

Grid Grid::Resized(std::uint16_t rows, std::uint16_t columns, std::uint16_t firstKept) const {
    Grid resized(rows, columns);
    const auto kept = static_cast<std::uint16_t>(std::min<int>(rows, Rows() - firstKept));
    for (std::uint16_t row = 0; row < kept; ++row) {
        const RowView view = View(static_cast<std::uint16_t>(firstKept + row));
        GridRow target = resized.Row(row);
        target.Clear(view.fill);
        const std::string_view text = view.text.substr(0, columns);
        if (view.styles == nullptr) target.Put(0, text, Style());
        for (std::uint16_t at = 0; view.styles != nullptr && at < text.size(); ++at)
            target.Put(at, text.substr(at, 1), Style::FromBits(view.styles[at]));
        if (view.wrapped && columns == mColumns) resized.SetWrapped(row);
    }
    return resized;
}

bool Grid::HasDamage() const {
    return mScrolled > 0 || mFirstMoved <= mLastMoved
           || std::ranges::any_of(mStates, [](const RowState& state) { return state.dirty; });
}

Damage Grid::TakeDamage() {
    Damage damage{.scrolled = mScrolled, .rows = {}};
    for (std::uint16_t row = 0; row < Rows(); ++row) {
        bool& dirty = mStates[mOrder.SlotOf(row)].dirty;
        if (dirty || (row >= mFirstMoved && row <= mLastMoved))
            damage.rows.push_back(static_cast<std::uint16_t>(row + 1));
        dirty = false;
    }
    mScrolled = 0;
    mFirstMoved = 1;
    mLastMoved = 0;
    return damage;
}

void Grid::MarkRows(std::uint16_t first, std::uint16_t last) {
    const bool none = mFirstMoved > mLastMoved;
    mFirstMoved = none ? first : std::min(mFirstMoved, first);
    mLastMoved = none ? last : std::max(mLastMoved, last);
}

void Grid::MarkScrolled(std::uint16_t count) {
    mScrolled = std::min<std::size_t>(Rows(), mScrolled + count);
    if (mFirstMoved > mLastMoved) return;
    if (mLastMoved < count) { // all of it has left
        mFirstMoved = 1;
        mLastMoved = 0;
        return;
    }
    mFirstMoved = static_cast<std::uint16_t>(mFirstMoved - std::min(mFirstMoved, count));
    mLastMoved = static_cast<std::uint16_t>(mLastMoved - count);
}

} // namespace qncomm::terminal

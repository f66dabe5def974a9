#pragma once

#include "terminal/Style.h"
#include "terminal/TerminalLine.h"

#include <cstdint>
#include <string_view>

namespace qncomm::terminal {

/// What is known of a row beside its cells. Cells from `used` on have never been written since the
/// row was cleared: they are blanks in the style `fill`, and nothing is stored for them. So a row
/// costs what stands in it, however wide the grid is, and clearing one touches no cell.
struct RowState {
    Style fill;
    std::uint16_t used = 0;
    bool styled = false;  ///< styles are stored for the used cells; otherwise all are default
    bool wrapped = false; ///< the next row goes on where this one had no more space
    bool dirty = true;    ///< a painter has not seen it as it is

    /// Member by member: copying a blank row over it costs ten times as much.
    void Clear(Style blank) {
        fill = blank;
        used = 0;
        styled = false;
        wrapped = false;
        dirty = true;
    }
};

/// Edits one row in place. Columns count from 0; every range lies inside the row (the caller's
/// duty).
class GridRow {
  public:
    GridRow(RowState& state, char* text, std::uint64_t* styles, std::uint16_t columns)
        : mState(state), mText(text), mStyles(styles), mColumns(columns) {}

    void Put(std::uint16_t column, std::string_view text, Style style);

    /// The character over count cells.
    void Repeat(std::uint16_t column, std::uint16_t count, char character, Style style);

    /// Blanks from `from` up to, not including, `to`.
    void Erase(std::uint16_t from, std::uint16_t to, Style blank);

    /// Moves the cells from column on to the right, over the edge, and leaves blanks.
    void Insert(std::uint16_t column, std::uint16_t count, Style blank);

    /// Moves the cells behind the removed ones to the left; blanks come in at the edge.
    void Delete(std::uint16_t column, std::uint16_t count, Style blank);

    void Clear(Style blank) { mState.Clear(blank); }

  private:
    /// Makes every cell before column a stored one.
    void StoreUpTo(std::uint16_t column);
    void StoreStyles();
    void SetStyles(std::uint16_t column, std::uint16_t count, Style style);

    RowState& mState;
    char* mText;
    std::uint64_t* mStyles;
    std::uint16_t mColumns;
};

/// A row to read: its stored cells and what stands behind them.
struct RowView {
    std::string_view text;
    const std::uint64_t* styles = nullptr; ///< one for each character, null when all are default
    Style fill;
    bool wrapped = false;
};

/// The row as a copy with its styles in runs.
TerminalLine ToLine(const RowView& row);

} // namespace qncomm::terminal

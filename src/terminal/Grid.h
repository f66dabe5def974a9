#pragma once

#include "GridRow.h"
#include "RowOrder.h"
#include "terminal/Damage.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qncomm::terminal {

/// The cells of the screen. Rows and columns count from 0; places outside are the caller's mistake.
class Grid {
  public:
    Grid(std::uint16_t rows, std::uint16_t columns);

    std::uint16_t Rows() const { return static_cast<std::uint16_t>(mStates.size()); }
    std::uint16_t Columns() const { return mColumns; }

    /// Valid until the grid is next scrolled, resized or destroyed.
    GridRow Row(std::uint16_t row) { return RowInSlot(mOrder.SlotOf(row)); }
    /// The row as it is now; valid until the next change.
    RowView View(std::uint16_t row) const;

    void SetWrapped(std::uint16_t row) {
        RowState& state = mStates[mOrder.SlotOf(row)];
        state.wrapped = state.dirty = true;
    }

    void ClearAll(Style blank);

    /// Rows first to last move up by count, at most their number; blank rows come in below.
    void ScrollUp(std::uint16_t first, std::uint16_t last, std::uint16_t count, Style blank);
    void ScrollDown(std::uint16_t first, std::uint16_t last, std::uint16_t count, Style blank);

    /// The same cells in another size: row firstKept becomes row 0; what has no space is cut off at
    /// the right and at the bottom.
    Grid Resized(std::uint16_t rows, std::uint16_t columns, std::uint16_t firstKept) const;

    bool HasDamage() const;
    /// What changed since the last call.
    Damage TakeDamage();

  private:
    GridRow RowInSlot(std::uint16_t slot) {
        const std::size_t at = std::size_t{slot} * mColumns;
        return {mStates[slot], mText.get() + at, mStyles.get() + at, mColumns};
    }
    void MarkRows(std::uint16_t first, std::uint16_t last);
    void MarkScrolled(std::uint16_t count);

    std::uint16_t mColumns;
    RowOrder mOrder;
    std::vector<RowState> mStates; ///< by slot, as the cells are
    /// Not initialised: only what a row's state says to be used is read, so that a page of memory
    /// that no cell was ever written to is never touched.
    std::unique_ptr<char[]> mText;
    std::unique_ptr<std::uint64_t[]> mStyles;

    /// Rows that changed their place without being written, as one span; none when first > last.
    std::uint16_t mFirstMoved = 1;
    std::uint16_t mLastMoved = 0;
    std::size_t mScrolled = 0;
};

} // namespace qncomm::terminal

#pragma once

#include <cstdint>
#include <vector>

namespace qncomm::terminal {

/// Which slot of storage each row of the screen stands in. Scrolling the whole screen turns a ring,
/// scrolling a part of it moves slot numbers; neither touches a cell.
class RowOrder {
  public:
    explicit RowOrder(std::uint16_t rows);

    std::uint16_t SlotOf(std::uint16_t row) const {
        const std::size_t place = mTop + row;
        return mSlots[place < mSlots.size() ? place : place - mSlots.size()];
    }

    /// Rows first to last move up by count (1 to their number); the ones that leave at the top come
    /// in again at the bottom.
    void RotateUp(std::uint16_t first, std::uint16_t last, std::uint16_t count);

    /// The other way round.
    void RotateDown(std::uint16_t first, std::uint16_t last, std::uint16_t count);

  private:
    bool IsWhole(std::uint16_t first, std::uint16_t last) const {
        return first == 0 && last + std::size_t{1} == mSlots.size();
    }
    /// Lays the ring out with its top at the start.
    void Straighten();

    std::vector<std::uint16_t> mSlots;
    std::size_t mTop = 0;
};

} // namespace qncomm::terminal

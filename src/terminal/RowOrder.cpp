#include "RowOrder.h"

#include <algorithm>
#include <numeric>

namespace qncomm::terminal {

RowOrder::RowOrder(std::uint16_t rows) : mSlots(rows) {
    std::iota(mSlots.begin(), mSlots.end(), std::uint16_t{0});
}

void RowOrder::RotateUp(std::uint16_t first, std::uint16_t last, std::uint16_t count) {
    if (IsWhole(first, last)) {
        mTop = (mTop + count) % mSlots.size();
        return;
    }
    Straighten();
    const auto begin = mSlots.begin() + first;
    std::rotate(begin, begin + count, mSlots.begin() + last + 1);
}

void RowOrder::RotateDown(std::uint16_t first, std::uint16_t last, std::uint16_t count) {
    RotateUp(first, last, static_cast<std::uint16_t>(last + 1 - first - count));
}

void RowOrder::Straighten() {
    if (mTop == 0) return;
    std::rotate(mSlots.begin(), mSlots.begin() + static_cast<std::ptrdiff_t>(mTop), mSlots.end());
    mTop = 0;
}

} // namespace qncomm::terminal

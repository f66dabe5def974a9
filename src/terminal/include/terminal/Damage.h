#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qncomm::terminal {

/// What changed on the screen since a painter last asked. First move the picture up by `scrolled`
/// rows (a new picture when that is all of them), then draw the rows named here.
struct Damage {
    std::size_t scrolled = 0;        ///< rows, at most as many as the screen has
    std::vector<std::uint16_t> rows; ///< counted from 1, ascending, in their place after the scroll

    /// Whether nothing changed.
    bool Empty() const { return scrolled == 0 && rows.empty(); }
};

} // namespace qncomm::terminal

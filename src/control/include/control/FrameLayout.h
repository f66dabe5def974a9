#pragma once

#include "control/ViewportTerminal.h"

#include <cstdint>

namespace qncomm {

/// Where the toolbar stands in the control.
enum ToolbarAlignValue : std::int16_t { ToolbarTop = 1, ToolbarBottom = 2 };

/// The sizes that the frame is laid out from; one unit for all.
struct FrameSizes {
    std::int32_t scaleWidth = 0;
    std::int32_t scaleHeight = 0;
    std::int32_t titleHeight = 0;
    std::int32_t toolbarHeight = 0;
    std::int32_t rowHeight = 0;
    bool toolbarVisible = true;
    std::int16_t toolbarAlign = ToolbarTop;
};

/// The terminal's place: below the title bar and a toolbar at the top, above one at the bottom, as
/// wide as the control. Never of negative height.
Rectangle TerminalPlace(const FrameSizes& sizes);

/// The least height that the grip leaves: title bar, visible toolbar, one row of text.
std::int32_t LeastHeight(const FrameSizes& sizes);

/// How far the grip moves the control's upper edge when it is released at lY from itself: upwards
/// (negative) at most until the control is as high as its form, downwards at most to the least
/// height; never the other way round.
std::int32_t LimitedDrag(std::int32_t lY, std::int32_t lHeight, std::int32_t lParentScaleHeight,
                         std::int32_t lLeastHeight);

} // namespace qncomm

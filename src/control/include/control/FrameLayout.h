#pragma once

#include "control/ViewportTerminal.h"

#include <cstdint>

namespace qncomm {

/// Where the toolbar stands in the control.
enum ToolbarAlignValue : std::int16_t {
    ToolbarTop = 1,    ///< between the title bar and the terminal
    ToolbarBottom = 2, ///< below the terminal
};

/// The sizes that the frame is laid out from; one unit for all.
struct FrameSizes {
    std::int32_t scaleWidth = 0;            ///< of the control's inner area
    std::int32_t scaleHeight = 0;           ///< of the control's inner area
    std::int32_t titleHeight = 0;           ///< of the title bar, which is always there
    std::int32_t toolbarHeight = 0;         ///< takes no room while toolbarVisible is false
    std::int32_t rowHeight = 0;             ///< of one row of the terminal's text
    bool toolbarVisible = true;             ///< whether the toolbar takes its height
    std::int16_t toolbarAlign = ToolbarTop; ///< a ToolbarAlignValue; with others the terminal
                                            ///< takes the toolbar's room
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

#include "control/FrameLayout.h"

#include <algorithm>

namespace qncomm {

Rectangle TerminalPlace(const FrameSizes& sizes) {
    const std::int32_t toolbar = sizes.toolbarVisible ? sizes.toolbarHeight : 0;
    const std::int32_t above = sizes.titleHeight + (sizes.toolbarAlign == ToolbarTop ? toolbar : 0);
    const std::int32_t below = sizes.toolbarAlign == ToolbarBottom ? toolbar : 0;
    return {0, above, sizes.scaleWidth, std::max(0, sizes.scaleHeight - above - below)};
}

std::int32_t LeastHeight(const FrameSizes& sizes) {
    return sizes.titleHeight + (sizes.toolbarVisible ? sizes.toolbarHeight : 0) + sizes.rowHeight;
}

std::int32_t LimitedDrag(std::int32_t lY, std::int32_t lHeight, std::int32_t lParentScaleHeight,
                         std::int32_t lLeastHeight) {
    if (lY < 0) return std::max(lY, std::min(0, lHeight - lParentScaleHeight));
    return std::min(lY, std::max(0, lHeight - lLeastHeight));
}

} // namespace qncomm

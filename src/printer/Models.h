#pragma once

#include <array>
#include <string_view>

namespace qncomm {

/// What differs between printer models.
struct PrinterModel {
    std::string_view code;
    std::array<std::string_view, 4> devices; ///< the devices it has; unused places are empty
    std::string_view workDevice{};           ///< where modules go; empty: the current device
    bool extended = false; ///< system-level options, filtering of bitmap fonts, "tmp:"
    bool trueType = false; ///< accepts TrueType fonts
    bool lists = true;     ///< lists its files, fonts and images
};

/// The model of a code, compared exactly; nullptr for an unknown one.
const PrinterModel* FindModel(std::string_view code);

} // namespace qncomm

#pragma once

// Monochrome PCX pictures, versions 3 and 5, run-length packed.

#include "label/Bitmap.h"

#include <optional>
#include <string_view>

namespace qnsim {

/// The picture, or nothing when the file is no monochrome PCX, is too large, or ends before its
/// last row.
std::optional<Bitmap> ReadPcx(std::string_view file);

} // namespace qnsim

#pragma once

#include <string_view>

namespace qncomm {

/// What the link writes into the serial control's tag while an operation must be alone on the line.
inline constexpr std::string_view ExclusiveMark = "EXCLUSIVE_USE";

} // namespace qncomm

#pragma once

#include "printer/clsQNModuleError.h"

#include <optional>
#include <string_view>

namespace qncomm {

/// The error of a reply line such as "Error 19 in line 12: Syntax error", with code, line and
/// description set. Nothing for a line that holds none, or whose code or line is missing or 0.
/// Raises 6 for a number that leaves 32 bits.
std::optional<clsQNModuleError> ParseModuleError(std::string_view sLine);

} // namespace qncomm

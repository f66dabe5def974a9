#pragma once

// The bitmap fonts that every model has, by their names.

#include <span>
#include <string_view>

namespace qnsim {

std::span<const std::string_view> BuiltInFontNames();
bool IsBuiltInFont(std::string_view name); ///< without regard to case

} // namespace qnsim

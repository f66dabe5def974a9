// The bitmap fonts that every model has, by their names.
#pragma once

#include <span>
#include <string_view>

namespace qnsim {

std::span<const std::string_view> BuiltInFontNames();
bool IsBuiltInFont(std::string_view name); // without regard to case

} // namespace qnsim

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

// What the setter of a setting stores for a text; nothing when the setting does not accept it.

std::optional<std::string> NormalBaudrate(std::string_view value);
std::optional<std::string> NormalParity(std::string_view value);
std::optional<std::string> NormalDatabits(std::string_view value);
std::optional<std::string> NormalStopbits(std::string_view value);

} // namespace qncomm

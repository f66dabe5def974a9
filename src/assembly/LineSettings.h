#pragma once

#include <string_view>

namespace qncomm {

/// Where the link keeps the line's settings, and the key of the configured port's number there.
inline constexpr std::string_view LineSection = "Settings";
inline constexpr std::string_view PortKey = "Commport";

} // namespace qncomm

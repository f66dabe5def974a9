#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qnctl {

/// The name that was probably meant by a mistyped word; empty when none is near it.
std::string NearestName(std::string_view word, const std::vector<std::string>& names);

} // namespace qnctl

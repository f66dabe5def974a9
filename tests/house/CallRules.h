#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// Calls that only one place of the product makes, so that what is decided there holds everywhere.
/// One text for each that stands elsewhere: the file, the call and who makes it instead. file is
/// the path below src/.
std::vector<std::string> StrayCalls(std::string_view file, std::string_view text);

} // namespace qncomm::testing

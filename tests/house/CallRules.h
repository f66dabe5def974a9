#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// The code of a source text: its comments and the content of its literals are blanks.
std::string CodeOf(std::string_view sText);

/// The calls of a file that sleep, poll, block or loop on a clock where only the system's one kind
/// of wait may, and those that open files where only the one way to open them may, one line each.
/// sFile is a path below src/, such as "link/AutoConnect.cpp".
std::vector<std::string> StrayCalls(std::string_view sFile, std::string_view sText);

} // namespace qncomm::testing

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// An include as it stands between its quotes or angle brackets.
struct Include {
    std::string path;    ///< such as "link/clsDataLink.h" or "vector"
    bool quoted = false; ///< in quotes, so a header of the project
};

/// The includes of a source text in their order.
std::vector<Include> IncludesOf(std::string_view sText);

/// The folder below src/ whose row holds for the file, the innermost that has one; empty when none
/// has. sFile is a path below src/, such as "link/AutoConnect.cpp".
std::string_view RuledFolderOf(std::string_view sFile);

/// What is wrong with a file's includes, one line each. sFile is a path below src/; without a row
/// nothing is wrong with it.
std::vector<std::string> StrayIncludes(std::string_view sFile, std::string_view sText);

} // namespace qncomm::testing

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace layers {

/// The includes of a source text, each as it stands between its quotes or angle brackets.
struct Include {
    std::string path;
    bool quoted = false;
};
std::vector<Include> IncludesOf(std::string_view sText);

/// What is wrong with a file's includes, one line each. sFile is the path inside the project, such
/// as "link/AutoConnect.cpp"; a file outside the house's folders (a test, a benchmark) may include
/// what it likes.
std::vector<std::string> StrayIncludes(std::string_view sFile, std::string_view sText);

/// The folders that have a rule.
std::vector<std::string_view> RuledFolders();

} // namespace layers

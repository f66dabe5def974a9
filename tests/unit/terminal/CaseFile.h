#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// Bytes sent to a fresh terminal, and what is seen then. cases/README.md says how a file spells
/// it.
struct TerminalCase {
    std::string name;
    std::string where;     ///< "FILE:LINE" where it starts
    std::int16_t rows = 5; ///< of the screen
    std::int16_t columns = 10;
    std::string bytes;
    std::vector<std::string>
        shown; ///< the first rows without blanks at their ends; all others are blank
    std::int16_t cursorRow = 0; ///< from 1; 0 = not said
    std::int16_t cursorColumn = 0;
};

/// For the names of failing cases.
inline void PrintTo(const TerminalCase& each, std::ostream* out) {
    *out << each.name;
}

/// Cases as they were read, without those that a mistake spoils.
struct TerminalCases {
    std::vector<TerminalCase> cases;
    std::vector<std::string> mistakes; ///< "FILE:LINE: what is wrong", one for each
};

/// The cases of a file's text; sFile is how mistakes name it.
TerminalCases ReadCases(std::string_view sFile, std::string_view sText);

/// The cases of every "*.txt" in the folder, in the order of the files' names. A name that two
/// cases have is a mistake, also when they stand in different files.
TerminalCases ReadCaseFolder(const std::filesystem::path& folder);

} // namespace qncomm::testing

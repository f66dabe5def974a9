#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

namespace terminal_testing {

/// Bytes sent to a fresh terminal of 5 rows by 10 columns, and what is seen then.
struct ConformanceCase {
    std::string_view name;
    std::string_view bytes;
    std::string_view rows; ///< as Rows() gives them
    std::int16_t cursorRow;
    std::int16_t cursorColumn;
};

/// For the names of failing cases.
inline void PrintTo(const ConformanceCase& row, std::ostream* out) {
    *out << row.name;
}

inline constexpr std::int16_t CaseRows = 5;
inline constexpr std::int16_t CaseColumns = 10;

std::span<const ConformanceCase> ConformanceCases();

} // namespace terminal_testing

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// A constant of the sources that a row of SECURITY.md names, and the amount that the row gives it.
struct StatedLimit {
    std::string name;
    std::uint64_t amount = 0; ///< bytes for KiB, MiB and GiB; the constant's own unit for times
};

/// The limits of the table under "## Limits" in a document, in its order. A row gives as many
/// amounts ("3 s and 1 MiB") as names (`LongestAnswerMs`, `MostSearchBytes`); one that does not is
/// a limit without a name.
std::vector<StatedLimit> StatedLimits(std::string_view sDocument);

/// The values that constants of that name are given in a source, such as 16384 for
/// "constexpr std::size_t Most = std::size_t{16} * 1024;". What is no product, shift or whole
/// number has none.
std::vector<std::optional<std::uint64_t>> DefinitionsOf(std::string_view sName,
                                                        std::string_view sSource);

} // namespace qncomm::testing

#pragma once

#include "printer/clsPrinterFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

// What the printer's replies say, line by line. Each function reads one line, in time linear in its
// length, and keeps nothing.

/// The one or two files of a row (name and size, side by side); a file whose size leaves 32 bits is
/// left out. Nothing when the row cannot be told apart, as with a name that holds two blanks.
std::optional<std::vector<clsPrinterFile>> ParseFileRow(std::string_view sLine);

/// The one or two fonts of a row, of size 0. Nothing when the row cannot be told apart.
std::optional<std::vector<clsPrinterFile>> ParseFontRow(std::string_view sLine);

/// The numbers before "BYTES FREE" and before "BYTES USED".
struct ByteCounts {
    std::optional<std::int32_t> free; ///< none when the line does not tell
    std::optional<std::int32_t> used; ///< none when the line does not tell
};

/// Each count whose words are there, in any case. Raises 6 for a number that leaves 32 bits.
ByteCounts ParseByteCounts(std::string_view sLine);

/// The word that ends at the first colon, colon included, such as "ram:". Nothing without a colon.
std::optional<std::string> ParseDeviceWord(std::string_view sLine);

/// The first number with its dots in a version text ("8.10" of "Quorin v8.10 b3"), else empty.
std::string ParseVersionNumber(std::string_view sText);

} // namespace qncomm

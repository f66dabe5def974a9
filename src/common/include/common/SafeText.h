#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qncomm {

// A text of others (of a printer, a file, the network) for each place where it is shown. There is
// one function for each kind of place, and no other way there.

/// For a terminal: UTF-8 text with every control character as "\xHH" and every mark that ends or
/// turns around a line (such as U+202E) as "\uHHHH", so that what a printer sends can neither steer
/// the terminal that shows it nor pass for another text. Line ends are controls, too. A byte that
/// is no UTF-8 is a control if a character of its number is, and else stays as it is.
std::string WithoutControls(std::string_view sUtf8);

/// For JSON: a document in one line with the same characters as JSON's own escapes, so that it
/// reads back to the same texts.
std::string WithoutControlsInJson(std::string_view sJson);

/// Bytes that FileNameFromPrinter returns at most: endings of a few bytes fit behind it.
inline constexpr std::size_t LongestHostName = 240;

/// For a folder of this machine: the name that a file of the printer gets there (UTF-8), from the
/// bytes that the printer calls it. It is one name and no path, never empty, hidden or taken for an
/// option: separators, controls, and a "." or "-" at its beginning become "_". Two names of a
/// printer may become one.
std::string FileNameFromPrinter(std::string_view sBytes);

} // namespace qncomm

#pragma once

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

} // namespace qncomm

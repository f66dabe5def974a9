#pragma once

#include "common/Utf8.h"

#include <string>
#include <string_view>

namespace qncomm {

/// A text of unknown origin for a UTF-8 console: kept when it is UTF-8, else taken as the
/// printer's.
std::string DisplayText(std::string_view sText);

/// The text with every control character as "\xHH" and every mark that ends or turns around a line
/// (such as U+202E) as "\uHHHH", so that what a printer sends can neither steer the terminal that
/// shows it nor pass for another text.
std::string WithoutControls(std::string_view sUtf8);

/// A JSON document in one line with the same characters as JSON's own escapes: it reads back to the
/// same texts.
std::string WithoutControlsInJson(std::string_view sJson);

/// Turns typed UTF-8 into bytes of the printer, however the characters are cut into pieces. A
/// character without a byte becomes "?".
class TypedText {
  public:
    /// The next piece of what was typed (UTF-8); returns the bytes of the characters that are whole
    /// now.
    std::string Feed(std::string_view sPiece);

  private:
    std::string mRest; ///< the start of a character whose end has not come yet
};

} // namespace qncomm

#pragma once

#include "common/SafeText.h"
#include "common/Utf8.h"

#include <string>
#include <string_view>

namespace qncomm {

/// A text of unknown origin for a UTF-8 console: kept when it is UTF-8, else taken as the
/// printer's.
std::string DisplayText(std::string_view sText);

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

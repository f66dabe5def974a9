#pragma once

#include <string>
#include <string_view>

namespace qncomm {

/// Whether the byte is a letter, a digit or a number sign such as "½" in Windows-1252.
bool IsLetterOrNumber(char cByte);

/// The text with each capital letter of Windows-1252 as its small one, so that comparing two such
/// texts ignores case. As long as the text.
std::string WithSmallLetters(std::string_view sText);

} // namespace qncomm

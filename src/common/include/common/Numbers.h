#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The numeric value of a text: blanks, tabs and line feeds are skipped wherever they stand; then
/// an optional sign, the longest decimal number with "." and an exponent E or D, or a whole number
/// after &H or &O. What follows is ignored; a text without a number at its start is 0. No locale
/// takes part. Raises 6 when the number leaves a double.
double Val(std::string_view sText);

/// The nearest whole number, halves to the even one. Raises 6 when it does not fit 16 bits.
std::int16_t ToInt16(double dValue);
/// The nearest whole number, halves to the even one. Raises 6 when it does not fit 32 bits.
std::int32_t ToInt32(double dValue);

/// The decimal text of a number: "." as the point, no leading blank, at most 15 digits.
std::string ToText(double dValue);
/// The decimal text of a whole number.
std::string ToText(std::int32_t lValue);

/// The number that the whole text is, decimal with "." and an exponent, blanks around it apart.
/// Raises 13 for a text that is no number and 6 for one that leaves a double.
double ToDouble(std::string_view sText);

/// The number that the whole text is, without blanks; nothing for any other text.
std::optional<std::int32_t> WholeNumberOf(std::string_view sText);

/// "True" and "False" (any case) or a number (0 is False); anything else raises 13.
bool ToBoolean(std::string_view sText);

/// "True" or "False".
std::string ToText(bool bValue);

} // namespace qncomm

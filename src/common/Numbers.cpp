#include "common/Numbers.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qncomm {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The text up to the first character that cannot belong to a number, without what Val skips.
std::string NumberCharacters(std::string_view sText) {
    std::string kept;
    for (const char c : sText) {
        if (c == ' ' || c == '\t' || c == '\n') continue;
        if (c == '\0'
            || std::string_view("0123456789+-.EeDdAaBbCcFf&HhOo").find(c) == std::string_view::npos)
            break;
        kept += c;
    }
    return kept;
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

/// The length of the longest decimal number at the start of text, 0 when there is none.
std::size_t DecimalLength(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::size_t whole = SkipDigits(text, at);
    std::size_t digits = whole - at;
    at = whole;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = SkipDigits(text, at + 1);
        digits += fraction - at - 1;
        at = fraction;
    }
    if (digits == 0) return 0;
    if (at < text.size() && std::string_view("EeDd").find(text[at]) != std::string_view::npos) {
        std::size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == '-' || text[exponent] == '+')) ++exponent;
        const std::size_t end = SkipDigits(text, exponent);
        if (end > exponent) at = end;
    }
    return at;
}

/// Whether a number that does not fit a double is too small for it (and so 0) rather than too
/// large.
bool IsTiny(std::string_view decimal) {
    const std::size_t exponent = decimal.find_first_of("eE");
    if (exponent != std::string_view::npos) return decimal.substr(exponent + 1).starts_with('-');
    return decimal.substr(0, decimal.find('.')).find_first_of("123456789")
           == std::string_view::npos;
}

/// A number after &H or &O. Up to four (six) digits are a signed 16-bit number, as the language has
/// it.
double RadixValue(std::string_view digits, int radix) {
    std::uint32_t value = 0;
    const auto [end, status] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, radix);
    if (status == std::errc::result_out_of_range) RaiseRuntimeError(RtOverflow);
    if (end == digits.data()) return 0;
    return value <= 0xFFFF ? static_cast<std::int16_t>(value) : static_cast<std::int32_t>(value);
}

double NearestEven(double value) {
    const double floor = std::floor(value);
    const double rest = value - floor;
    if (rest < 0.5) return floor;
    if (rest > 0.5) return floor + 1;
    return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}

template <class Int>
Int ToWhole(double value) {
    const double whole = NearestEven(value);
    if (!(whole >= std::numeric_limits<Int>::min() && whole <= std::numeric_limits<Int>::max()))
        RaiseRuntimeError(RtOverflow);
    return static_cast<Int>(whole);
}

} // namespace

double Val(std::string_view sText) {
    std::string text = NumberCharacters(sText);
    if (text.size() >= 2 && text[0] == '&') {
        const char radix = static_cast<char>(text[1] | 0x20);
        if (radix == 'h') return RadixValue(std::string_view(text).substr(2), 16);
        if (radix == 'o') return RadixValue(std::string_view(text).substr(2), 8);
        return 0;
    }
    text.resize(DecimalLength(text));
    for (char& c : text)
        if (c == 'D' || c == 'd') c = 'e';
    const char* first = text.data() + (text.starts_with('+') ? 1 : 0);
    double value = 0;
    const auto status = std::from_chars(first, text.data() + text.size(), value).ec;
    if (status == std::errc::result_out_of_range && !IsTiny(text)) RaiseRuntimeError(RtOverflow);
    return value;
}

std::int16_t ToInt16(double dValue) {
    return ToWhole<std::int16_t>(dValue);
}
std::int32_t ToInt32(double dValue) {
    return ToWhole<std::int32_t>(dValue);
}

double ToDouble(std::string_view sText) {
    const std::string text = Trim(sText);
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range) RaiseRuntimeError(RtOverflow);
    if (error != std::errc() || stop != end) RaiseRuntimeError(RtTypeMismatch);
    return number;
}

std::optional<std::int32_t> WholeNumberOf(std::string_view sText) {
    std::int32_t number = 0;
    const char* end = sText.data() + sText.size();
    const auto [stop, error] = std::from_chars(sText.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

std::string ToText(double dValue) {
    char buffer[40];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, dValue, std::chars_format::general, 15).ptr;
    return UpperCase(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}

std::string ToText(std::int32_t lValue) {
    return std::to_string(lValue);
}

bool ToBoolean(std::string_view sText) {
    const std::string text = LowerCase(Trim(sText));
    if (text == "true") return true;
    if (text == "false") return false;
    if (text.empty() || DecimalLength(text) != text.size()) RaiseRuntimeError(RtTypeMismatch);
    return Val(text) != 0;
}

std::string ToText(bool bValue) {
    return bValue ? "True" : "False";
}

} // namespace qncomm

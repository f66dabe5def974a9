#pragma once

// Small text helpers that the simulator's parts share. ASCII only: the printer's bytes above 127
// are left alone.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

char UpperChar(char c);
std::string Upper(std::string_view text);
std::string Lower(std::string_view text);

/// Without the blanks and tabs at both ends.
std::string_view Trim(std::string_view text);

/// In capitals and without any blank: how command lines are compared with what they may begin with.
std::string Squeezed(std::string_view text);

/// The order of names for which case makes no difference.
struct CaselessLess {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const;
};

/// The pieces between the separators, empty ones included.
std::vector<std::string_view> Split(std::string_view text, char separator);

/// A number as the printer prints it: whole numbers plain, others with up to nine digits.
std::string NumberText(double value);

/// The number at the start of a text (leading blanks skipped), 0 when there is none.
double TextNumber(std::string_view text);

/// The number that a text without blanks around it is, decimal or after &H; 0 for an empty text.
std::optional<double> WholeTextNumber(std::string_view text);

} // namespace qnsim

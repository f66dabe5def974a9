#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

// Text is bytes: what travels on the line is 8-bit and passes through unchanged. Case is folded for
// A to Z only, so that no locale takes part and no byte of another character set is touched.

/// The text with A to Z in the place of a to z.
std::string UpperCase(std::string_view sText);
/// The text with a to z in the place of A to Z.
std::string LowerCase(std::string_view sText);
/// Whether the texts are the same when the case of A to Z does not count.
bool EqualNoCase(std::string_view sLeft, std::string_view sRight);

/// The text without the blanks (only 0x20) at its ends.
std::string Trim(std::string_view sText);

/// The text with sBy in the place of each sWhat, from left to right; what was put in is not
/// searched again.
std::string ReplaceAll(std::string_view sText, std::string_view sWhat, std::string_view sBy);

/// The non-empty pieces between the separators; a piece of blanks is kept.
std::vector<std::string> SplitNonEmpty(std::string_view sText, std::string_view sSeparator);

/// All pieces, empty ones included; the text without a separator is one piece, the empty text none.
std::vector<std::string> SplitKeepEmpty(std::string_view sText, std::string_view sSeparator);

/// The pieces between runs of two or more blanks, at most lMost of them: further runs stay in the
/// last piece.
std::vector<std::string> SplitAtBlankRuns(std::string_view sText, std::size_t lMost);

/// A run of blanks becomes one.
std::string CollapseSpaces(std::string_view sText);

/// Every line end (CR, LF, CR LF) becomes CR LF. Of line feeds in a row, with carriage returns
/// counted as such, each pair is taken for one line end: what printers send as LF LF is one.
std::string NormalizeLineEnds(std::string_view sText);

/// Each byte without its highest bit.
std::string Strip8thBit(std::string_view sText);

/// The text after the last "/" of a path, never cut at ":".
std::string FileNameOf(std::string_view sPath);

/// The text between double quotes, as command lines carry names.
std::string Quoted(std::string_view sText);

/// The line end of the printer and of texts for message boxes.
inline constexpr std::string_view CrLf = "\r\n";

} // namespace qncomm

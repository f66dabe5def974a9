#pragma once

#include "common/Windows1252.h"

#include <QString>

#include <string>
#include <string_view>

namespace qncomm {

// The printer speaks Windows-1252, this machine UTF-8 and the toolkit UTF-16. The five bytes that
// Windows-1252 leaves undefined stand for the control characters of the same number, so every byte
// of the line survives being shown and typed again.

/// Bytes of the line as text, one character a byte.
QString FromLine(std::string_view sBytes);
/// Text as bytes of the line; a character that has none becomes "?".
std::string ToLine(const QString& sText);

/// UTF-8, as host paths and the system's own words are, and back.
QString FromHost(std::string_view sText);
std::string ToHost(const QString& sText);

/// A text of unknown origin, such as that of a message box: taken as UTF-8 when it is that, else as
/// bytes of the line.
QString FromEither(std::string_view sText);

} // namespace qncomm

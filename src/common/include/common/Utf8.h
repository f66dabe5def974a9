#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

// The printer speaks Windows-1252; paths, messages and consoles are UTF-8. The five bytes that
// Windows-1252 leaves undefined stand for the control characters of the same number, so every byte
// survives the way there and back.

/// One character at the start of a UTF-8 text.
struct Utf8Character {
    std::size_t size = 0; ///< bytes that it takes; 0 = the text ends inside it
    char32_t point = 0;   ///< its Unicode number
    bool valid = false;   ///< false = these bytes are no UTF-8
};

/// The first character of a text that is not empty.
Utf8Character FirstOfUtf8(std::string_view sText);

/// Bytes of the printer as UTF-8.
std::string Utf8FromPrinter(std::string_view sBytes);

/// UTF-8 as bytes of the printer; nothing when a character has no byte or the text is no UTF-8.
std::optional<std::string> PrinterFromUtf8(std::string_view sText);

/// How a file of this machine is called on the printer: the last part of its path (UTF-8) as bytes
/// of the printer. A name with a character that has no byte keeps its bytes as they are, so that
/// no two names become one.
std::string PrinterNameOf(std::string_view sHostPath);

} // namespace qncomm

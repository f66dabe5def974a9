#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// An error that the printer reported in a line of a reply.
struct PrinterError {
    std::int32_t number = 0; ///< 0: the line reports none
    std::string description;
};

/// What "Error N: text", with "in line N" before the colon or without, says; the line of a program
/// stands behind the description.
PrinterError ParsePrinterError(std::string_view line);

} // namespace qncomm

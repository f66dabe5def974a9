#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The system's own error numbers. 1006, 1012 and 1019 are kept in the table for hosts that know
/// them.
enum ErrorNumber : std::int32_t {
    ErrProtocol = 1000,
    ErrBaudrate = 1001,
    ErrParity = 1002,
    ErrDatabits = 1003,
    ErrStopbits = 1004,
    ErrFlowcontrol = 1005,
    ErrCommport = 1006,
    ErrOutputTimeout = 1007,
    ErrInputTimeout = 1008,
    ErrPrinterModel = 1009,
    ErrDeviceName = 1010,
    ErrUploadName = 1011,
    ErrDownloadName = 1012,
    ErrImageName = 1013,
    ErrImageSettings = 1014,
    ErrImageFormat = 1015,
    ErrFontName = 1016,
    ErrNoTrueType = 1017,
    ErrPropertyValue = 1018,
    ErrUnknownPrinter = 1019,
    ErrModuleName = 1020,
    ErrModuleEmpty = 1021,
    ErrDownloadTimeout = 1022,
    ErrUploadTimeout = 1023,
    ErrPortNotOpen = 1024,
};

/// What is added to a number that the printer reported, so that the two ranges never meet.
inline constexpr std::int32_t PrinterErrorBase = 60000;

/// The system's message for lNumber, or "An unknown error has occurred!" when the table has no such
/// entry. Numbers below 1000 are not in the table.
std::string GetErrorText(std::int32_t lNumber);

/// Sets the screen's mouse pointer back to the default and raises lNumber with sSource. The
/// description is the runtime's below 1000 and GetErrorText's from there on.
[[noreturn]] void RaiseError(std::int32_t lNumber, std::string_view sSource);

/// Sets the screen's mouse pointer back to the default and raises 60000 + lNumber with sSource and
/// sDescription as they are. Raises 6 when the addition leaves 32 bits.
[[noreturn]] void RaisePrinterError(std::int32_t lNumber, std::string_view sSource,
                                    std::string_view sDescription);

} // namespace qncomm

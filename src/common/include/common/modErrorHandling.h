#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The system's own error numbers.
enum ErrorNumber : std::int32_t {
    /// A reply was not what the command calls for, or longer than the link keeps.
    ErrProtocol = 1000,
    /// The text is no baud rate of the system.
    ErrBaudrate = 1001,
    /// The text is no parity of the system.
    ErrParity = 1002,
    /// The text is no number of data bits of the system.
    ErrDatabits = 1003,
    /// The text is no number of stop bits of the system.
    ErrStopbits = 1004,
    /// In the table for hosts; nothing raises it, as every number has a meaning.
    ErrFlowcontrol = 1005,
    /// In the table for hosts; nothing raises it.
    ErrCommport = 1006,
    /// The printer did not echo, or the line did not take, what was sent in time.
    ErrOutputTimeout = 1007,
    /// The printer's reply did not end in time.
    ErrInputTimeout = 1008,
    /// The printer named a model that is not in the table of models.
    ErrPrinterModel = 1009,
    /// A path names no device, or one that the printer lacks.
    ErrDeviceName = 1010,
    /// The file of this machine that is to be sent does not exist.
    ErrUploadName = 1011,
    /// In the table for hosts; nothing raises it.
    ErrDownloadName = 1012,
    /// The image of this machine that is to be installed does not exist.
    ErrImageName = 1013,
    /// The line changes or loses bytes, and the user declined to adjust it.
    ErrImageSettings = 1014,
    /// The image of this machine is not a PCX that the printer can load.
    ErrImageFormat = 1015,
    /// The font of this machine that is to be installed does not exist.
    ErrFontName = 1016,
    /// The printer's model keeps no TrueType fonts.
    ErrNoTrueType = 1017,
    /// A name or number is none of those that the member knows.
    ErrPropertyValue = 1018,
    /// In the table for hosts; nothing raises it.
    ErrUnknownPrinter = 1019,
    /// There is neither a text nor a file of the module, or nothing to name it after.
    ErrModuleName = 1020,
    /// The module's file has no bytes.
    ErrModuleEmpty = 1021,
    /// A file from the printer did not arrive whole.
    ErrDownloadTimeout = 1022,
    /// A file to the printer did not arrive whole.
    ErrUploadTimeout = 1023,
    /// The port is closed, or was closed meanwhile.
    ErrPortNotOpen = 1024,
    /// What the host has read is of another generation of the link's live state. Not in the table
    /// of
    /// messages: it brings its own text.
    ErrFormerPrinter = 1100,
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

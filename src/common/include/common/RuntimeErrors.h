#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The runtime's error numbers that this system raises.
enum RuntimeErrorNumber : std::int32_t {
    RtInvalidCall = 5,
    RtOverflow = 6,
    RtOutOfMemory = 7,
    RtSubscript = 9,
    RtDivisionByZero = 11,
    RtTypeMismatch = 13,
    RtBadFileName = 52,
    RtFileNotFound = 53,
    RtBadFileMode = 54,
    RtFileAlreadyOpen = 55,
    RtDeviceIO = 57,
    RtFileExists = 58,
    RtDiskFull = 61,
    RtInputPastEnd = 62,
    RtTooManyFiles = 67,
    RtDeviceUnavailable = 68,
    RtPermissionDenied = 70,
    RtDiskNotReady = 71,
    RtPathFileAccess = 75,
    RtPathNotFound = 76,
    RtObjectNotSet = 91,
    RtNoSuchMember = 438,
    RtAutomation = 440,
    RtArgumentMissing = 449,
    RtArgumentCount = 450,
    RtDuplicateKey = 457,
};

/// The runtime's standard description of lNumber, "Application-defined or object-defined error" for
/// a number that has none.
std::string RuntimeErrorText(std::int32_t lNumber);

/// Raises a runtime error with its standard description. Unlike the raising procedures of
/// modErrorHandling it leaves the mouse pointer as it is: the runtime knows nothing of a busy
/// screen.
[[noreturn]] void RaiseRuntimeError(std::int32_t lNumber, std::string_view sSource = "QNComm");

} // namespace qncomm

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The runtime's error numbers that this system raises.
enum RuntimeErrorNumber : std::int32_t {
    RtInvalidCall = 5,        ///< an argument or a key that cannot be
    RtOverflow = 6,           ///< a number leaves its range
    RtOutOfMemory = 7,        ///< no memory is left
    RtSubscript = 9,          ///< a position that is not there
    RtDivisionByZero = 11,    ///< a number was divided by 0
    RtTypeMismatch = 13,      ///< a value of another type is wanted
    RtBadFileName = 52,       ///< a file name that cannot be
    RtFileNotFound = 53,      ///< there is no such file
    RtBadFileMode = 54,       ///< a file cannot be used in this way
    RtFileAlreadyOpen = 55,   ///< the file is in use
    RtDeviceIO = 57,          ///< the device failed
    RtFileExists = 58,        ///< a file of that name is there
    RtDiskFull = 61,          ///< no room is left
    RtInputPastEnd = 62,      ///< the file ends too early
    RtTooManyFiles = 67,      ///< this process has too many open files
    RtDeviceUnavailable = 68, ///< there is no such device
    RtPermissionDenied = 70,  ///< this user may not
    RtDiskNotReady = 71,      ///< there is no disk in the drive
    RtPathFileAccess = 75,    ///< the path cannot be used: a folder, a link in a circle, …
    RtPathNotFound = 76,      ///< a folder of the path is missing
    RtObjectNotSet = 91,      ///< an object is used that has gone or was never made
    RtNoSuchMember = 438,     ///< the object has no member or property of that name
    RtAutomation = 440,       ///< a handler of the host failed
    RtArgumentMissing = 449,  ///< an argument that is not optional
    RtArgumentCount = 450,    ///< more arguments than the member has
    RtDuplicateKey = 457,     ///< the collection has an item with that key
};

/// The runtime's standard description of lNumber, "Application-defined or object-defined error" for
/// a number that has none.
std::string RuntimeErrorText(std::int32_t lNumber);

/// Raises a runtime error with its standard description. Unlike the raising procedures of
/// modErrorHandling it leaves the mouse pointer as it is: the runtime knows nothing of a busy
/// screen.
[[noreturn]] void RaiseRuntimeError(std::int32_t lNumber, std::string_view sSource = "QNComm");

} // namespace qncomm

#include "common/RuntimeErrors.h"

#include "common/QNError.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

struct RuntimeMessage {
    std::int32_t number;
    std::string_view text;
};

constexpr std::array RuntimeMessages = {
    RuntimeMessage{3, "Return without GoSub"},
    RuntimeMessage{5, "Invalid procedure call or argument"},
    RuntimeMessage{6, "Overflow"},
    RuntimeMessage{7, "Out of memory"},
    RuntimeMessage{9, "Subscript out of range"},
    RuntimeMessage{10, "This array is fixed or temporarily locked"},
    RuntimeMessage{11, "Division by zero"},
    RuntimeMessage{13, "Type mismatch"},
    RuntimeMessage{14, "Out of string space"},
    RuntimeMessage{18, "User interrupt occurred"},
    RuntimeMessage{20, "Resume without error"},
    RuntimeMessage{28, "Out of stack space"},
    RuntimeMessage{35, "Sub, Function, or Property not defined"},
    RuntimeMessage{47, "Too many DLL application clients"},
    RuntimeMessage{48, "Error in loading DLL"},
    RuntimeMessage{49, "Bad DLL calling convention"},
    RuntimeMessage{51, "Internal error"},
    RuntimeMessage{52, "Bad file name or number"},
    RuntimeMessage{53, "File not found"},
    RuntimeMessage{54, "Bad file mode"},
    RuntimeMessage{55, "File already open"},
    RuntimeMessage{57, "Device I/O error"},
    RuntimeMessage{58, "File already exists"},
    RuntimeMessage{59, "Bad record length"},
    RuntimeMessage{61, "Disk full"},
    RuntimeMessage{62, "Input past end of file"},
    RuntimeMessage{63, "Bad record number"},
    RuntimeMessage{67, "Too many files"},
    RuntimeMessage{68, "Device unavailable"},
    RuntimeMessage{70, "Permission denied"},
    RuntimeMessage{71, "Disk not ready"},
    RuntimeMessage{74, "Can't rename with different drive"},
    RuntimeMessage{75, "Path/File access error"},
    RuntimeMessage{76, "Path not found"},
    RuntimeMessage{91, "Object variable or With block variable not set"},
    RuntimeMessage{92, "For loop not initialized"},
    RuntimeMessage{93, "Invalid pattern string"},
    RuntimeMessage{94, "Invalid use of Null"},
    RuntimeMessage{97,
                   "Can't call Friend function on object that isn't an instance of defining class"},
    RuntimeMessage{298, "System resource or DLL could not be loaded"},
    RuntimeMessage{321, "Invalid file format"},
    RuntimeMessage{380, "Invalid property value"},
    RuntimeMessage{381, "Invalid property-array index"},
    RuntimeMessage{424, "Object required"},
    RuntimeMessage{429, "ActiveX component can't create object"},
    RuntimeMessage{438, "Object doesn't support this property or method"},
    RuntimeMessage{440, "Automation error"},
    RuntimeMessage{448, "Named argument not found"},
    RuntimeMessage{449, "Argument not optional"},
    RuntimeMessage{450, "Wrong number of arguments or invalid property assignment"},
    RuntimeMessage{457, "This key is already associated with an element of this collection"},
    RuntimeMessage{481, "Invalid picture"},
};

} // namespace

std::string RuntimeErrorText(std::int32_t lNumber) {
    const auto* found = std::find_if(RuntimeMessages.begin(), RuntimeMessages.end(),
                                     [&](const auto& m) { return m.number == lNumber; });
    if (found == RuntimeMessages.end()) return "Application-defined or object-defined error";
    return std::string(found->text);
}

void RaiseRuntimeError(std::int32_t lNumber, std::string_view sSource) {
    throw QNError(lNumber, std::string(sSource), RuntimeErrorText(lNumber));
}

} // namespace qncomm

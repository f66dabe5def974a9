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
    RuntimeMessage{28, "Out of stack space"},
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
    RuntimeMessage{94, "Invalid use of Null"},
    RuntimeMessage{438, "Object doesn't support this property or method"},
    RuntimeMessage{440, "Automation error"},
    RuntimeMessage{449, "Argument not optional"},
    RuntimeMessage{450, "Wrong number of arguments or invalid property assignment"},
    RuntimeMessage{457, "This key is already associated with an element of this collection"},
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

// The lines of a setup listing, as any line may bring them.

#include "ReplyLines.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "printer/SetupListing.h"

namespace qncomm {
namespace {

void CheckLine(const std::string& line) {
    const bool hasComma = line.find(',') != std::string::npos;
    try {
        const clsPrinterSetupItem item = ParseSetupLine(line);
        Require(hasComma && item.Value.find(',') == std::string::npos);
        Require(Trim(item.Key) == item.Key && Trim(item.Value) == item.Value);
    } catch (const QNError& error) {
        Require(!hasComma && error.Number() == RtInvalidCall);
    }
}

} // namespace
} // namespace qncomm

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    for (const std::string& line : qncomm::ReplyLines(data, size))
        qncomm::CheckLine(line);
    return 0;
}

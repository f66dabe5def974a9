// The rows and byte counts of listings, as any line may bring them.

#include "ReplyLines.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "printer/Listing.h"

namespace qncomm {
namespace {

/// Names are trimmed and hold no separator, unless they are fields beyond the most that are split.
void CheckRow(const std::optional<std::vector<clsPrinterFile>>& files) {
    if (!files) return;
    Require(files->size() <= 2);
    for (const clsPrinterFile& file : *files)
        Require(!file.Name.empty() && Trim(file.Name) == file.Name
                && file.Name.find("  ") == std::string::npos);
}

void CheckLine(const std::string& line) {
    CheckRow(ParseFileRow(line));
    CheckRow(ParseFontRow(line));
    if (const auto device = ParseDeviceWord(line))
        Require(device->ends_with(':') && device->find(' ') == std::string::npos);
    Require(ParseVersionNumber(line).find_first_not_of("0123456789.") == std::string::npos);
    try {
        ParseByteCounts(line);
    } catch (const QNError& error) {
        Require(error.Number() == RtOverflow);
    }
}

} // namespace
} // namespace qncomm

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    for (const std::string& line : qncomm::ReplyLines(data, size))
        qncomm::CheckLine(line);
    return 0;
}

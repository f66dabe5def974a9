// The error lines of a module upload, as any line may bring them.

#include "ReplyLines.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "printer/ModuleReply.h"

namespace qncomm {
namespace {

void CheckLine(const std::string& line) {
    try {
        const auto error = ParseModuleError(line);
        if (!error) return;
        Require(error->QNErrCode != 0 && error->QNErrInLine != 0);
        Require(line.find("Error") != std::string::npos);
        Require(line.find(error->QNErrDesc) != std::string::npos);
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

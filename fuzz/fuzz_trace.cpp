// Any file as a trace: lines read or are refused, what reads is written back the same, and what is
// taken out keeps its length.
#include "trace/TraceRedaction.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

void Try(qncomm::TraceRedaction& redaction, const std::string& line) {
    const auto record = qncomm::ParseTraceLine(line);
    if (!record) return;
    const auto again = qncomm::ParseTraceLine(qncomm::TraceLineOf(*record));
    Require(again && again->bytes == record->bytes && again->redacted == record->redacted
            && again->ms == record->ms && again->kind == record->kind);
    std::size_t length = 0;
    for (const qncomm::TraceRecord& part : redaction.Redact(*record)) {
        Require(part.bytes.empty() || part.redacted == 0);
        length += part.bytes.size() + part.redacted;
    }
    Require(length == record->bytes.size() + record->redacted);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::istringstream in(std::string(bytes, bytes + size));
    qncomm::TraceRedaction redaction;
    for (std::string line; std::getline(in, line);)
        Try(redaction, line);
    return 0;
}

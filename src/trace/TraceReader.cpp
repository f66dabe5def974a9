#include "trace/TraceReader.h"

#include "platform/FileOpening.h"

#include <utility>

namespace qncomm {
namespace {

/// Bytes that the records of one trace may stand for without holding them: a few characters of text
/// each would otherwise become a memory full of dots.
constexpr std::size_t MostRedactedOfAll = 64UL * 1024 * 1024;

} // namespace

TraceReading ReadTrace(const std::string& sPath) {
    TraceReading reading;
    std::string text;
    reading.result = ReadWholeFile(sPath, {.limit = LargestTrace}, text);
    std::size_t redacted = 0;
    int number = 0;
    for (std::string_view left = text; !left.empty();) {
        ++number;
        const std::size_t end = left.find('\n');
        const bool cutShort = end == std::string_view::npos;
        const std::string_view line = left.substr(0, end);
        left.remove_prefix(cutShort ? left.size() : end + 1);
        if (line.empty()) continue;
        std::optional<TraceRecord> record = ParseTraceLine(line);
        if (!record && cutShort) break;
        if (record) redacted += record->redacted;
        if (!record || redacted > MostRedactedOfAll) {
            reading.result = {IoStatus::Failed, 0,
                              sPath + ": line " + std::to_string(number)
                                  + (record ? " stands for more bytes than are replayed"
                                            : " is no record of a trace")};
            return reading;
        }
        record->line = number;
        reading.records.push_back(std::move(*record));
    }
    return reading;
}

} // namespace qncomm

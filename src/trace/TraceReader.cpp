#include "trace/TraceReader.h"

#include "platform/FileOpening.h"

#include <utility>

namespace qncomm {
namespace {

std::optional<TraceRecord> RecordOf(std::string_view line) {
    if (line.size() > LongestTraceLine) return std::nullopt;
    return ParseTraceLine(line);
}

} // namespace

TraceReading ReadTrace(const std::string& sPath, std::size_t lMostRecords) {
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
        std::optional<TraceRecord> record = RecordOf(line);
        if (!record && cutShort) break;
        if (record) redacted += record->redacted;
        const char* wrong = nullptr;
        if (!record) wrong = " is no record of a trace";
        if (redacted > MostRedactedOfAll) wrong = " stands for more bytes than are replayed";
        if (reading.records.size() == lMostRecords) wrong = " is one record more than are read";
        if (wrong != nullptr) {
            reading.result = {IoStatus::Failed, 0,
                              sPath + ": line " + std::to_string(number) + wrong};
            return reading;
        }
        record->line = number;
        reading.records.push_back(std::move(*record));
    }
    return reading;
}

} // namespace qncomm

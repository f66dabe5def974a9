#include "trace/TraceReader.h"

#include "platform/FileOpening.h"

#include <utility>

namespace qncomm {

TraceReading ReadTrace(const std::string& sPath) {
    TraceReading reading;
    std::string text;
    reading.result = ReadWholeFile(sPath, {.limit = LargestTrace}, text);
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
        if (!record) {
            reading.result = {IoStatus::Failed, 0,
                              sPath + ": line " + std::to_string(number)
                                  + " is no record of a trace"};
            return reading;
        }
        record->line = number;
        reading.records.push_back(std::move(*record));
    }
    return reading;
}

} // namespace qncomm

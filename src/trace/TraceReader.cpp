#include "trace/TraceReader.h"

#include "platform/SystemErrors.h"

#include <cerrno>
#include <fstream>
#include <utility>

namespace qncomm {

TraceReading ReadTrace(const std::string& sPath) {
    TraceReading reading;
    std::ifstream in(sPath, std::ios::binary);
    if (!in) {
        reading.result = OpenFailure(errno);
        return reading;
    }
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        const bool cutShort = in.eof();
        if (line.empty()) continue;
        std::optional<TraceRecord> record = ParseTraceLine(line);
        if (!record && cutShort) break;
        if (!record) {
            reading.result = {IoStatus::Failed, 0,
                              "line " + std::to_string(number) + " is no record of a trace"};
            return reading;
        }
        record->line = number;
        reading.records.push_back(std::move(*record));
    }
    return reading;
}

} // namespace qncomm

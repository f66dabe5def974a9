#pragma once

#include "platform/IoResult.h"
#include "trace/TraceSink.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// One line of a trace.
struct TraceRecord {
    int line = 0;                      ///< its number in the file, from 1
    std::int64_t ms = 0;               ///< since the first record
    TraceKind kind = TraceKind::Event; ///< which way the bytes went
    std::string bytes;                 ///< of the line, or an event's text
    std::size_t redacted = 0;          ///< how many bytes were taken out; bytes is empty then
};

/// Reads one line as JsonLinesTrace writes it; nothing when it is none.
std::optional<TraceRecord> ParseTraceLine(std::string_view sLine);

/// A record as a line without its end, so that ParseTraceLine reads it back.
std::string TraceLineOf(const TraceRecord& record);

/// What ReadTrace found.
struct TraceReading {
    std::vector<TraceRecord> records; ///< in the file's order, up to the line that is no record
    /// Why the file could not be read, with its path; a line that is no record is named.
    IoResult result;
};

/// Bytes of a trace that is read: some days of a line at 115,200 baud.
inline constexpr std::uint64_t LargestTrace = std::uint64_t{1} << 30U;

/// Bytes of one of its lines: a record is what one read or write of a port has moved.
inline constexpr std::size_t LongestTraceLine = std::size_t{8} * 1024 * 1024;
/// Its records; each takes some times more memory than the shortest line has bytes.
inline constexpr std::size_t MostTraceRecords = std::size_t{8} * 1024 * 1024;
/// Bytes that its records may stand for without holding them: a few characters of text each would
/// otherwise become a memory full of dots.
inline constexpr std::size_t MostRedactedOfAll = std::size_t{64} * 1024 * 1024;

/// Reads a whole trace, which must be a regular file, within the limits above and with times of 0
/// to 10^12 ms. A last line that was cut short, as a killed program leaves it, is left out. A
/// caller may bear fewer records.
TraceReading ReadTrace(const std::string& sPath, std::size_t lMostRecords = MostTraceRecords);

} // namespace qncomm

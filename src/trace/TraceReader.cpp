#include "trace/TraceReader.h"

#include "platform/SystemErrors.h"
#include "trace/JsonLinesTrace.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace qncomm {
namespace {

using Json = nlohmann::json;

/// What one write or read of a port can hold.
constexpr std::size_t MostRedacted = 16UL * 1024 * 1024;

struct KindName {
    const char* name;
    TraceKind kind;
};

constexpr std::array KindNames{KindName{"tx", TraceKind::Sent}, KindName{"rx", TraceKind::Received},
                               KindName{"event", TraceKind::Event}};

/// JSON carries text, a trace bytes: each byte stands as the character of its number, which the
/// text has as one byte or two.
std::optional<std::string> BytesOf(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto first = static_cast<unsigned char>(text[at]);
        if (first < 0x80) {
            bytes += text[at];
            continue;
        }
        if ((first != 0xC2 && first != 0xC3) || at + 1 == text.size()) return std::nullopt;
        const auto second = static_cast<unsigned char>(text[++at]);
        bytes += static_cast<char>((first & 0x03U) << 6U | (second & 0x3FU));
    }
    return bytes;
}

std::optional<TraceKind> KindOf(const Json& name) {
    for (const KindName& known : KindNames)
        if (name == known.name) return known.kind;
    return std::nullopt;
}

} // namespace

std::optional<TraceRecord> ParseTraceLine(std::string_view sLine) {
    const Json line = Json::parse(sLine.begin(), sLine.end(), nullptr, false);
    if (!line.is_object() || !line.contains("ms") || !line.contains("kind")
        || !line.contains("bytes") || !line["ms"].is_number_integer() || !line["bytes"].is_string())
        return std::nullopt;
    const std::optional<TraceKind> kind = KindOf(line["kind"]);
    std::optional<std::string> bytes = BytesOf(line["bytes"].get_ref<const std::string&>());
    if (!kind || !bytes) return std::nullopt;
    TraceRecord record{0, line["ms"].get<std::int64_t>(), *kind, std::move(*bytes), 0};
    if (line.contains("redacted") && line["redacted"].is_number_unsigned())
        record.redacted = line["redacted"].get<std::size_t>();
    if (record.redacted > MostRedacted || (record.redacted > 0 && !record.bytes.empty()))
        return std::nullopt;
    return record;
}

std::string TraceLineOf(const TraceRecord& record) {
    std::string line = JsonLinesTrace::LineOf(record.ms, record.kind, record.bytes);
    if (record.redacted == 0) return line;
    line.pop_back();
    return line + ",\"redacted\":" + std::to_string(record.redacted) + "}";
}

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

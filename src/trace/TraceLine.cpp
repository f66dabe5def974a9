// One line of a trace, written and read.

#include "TraceLine.h"

#include "trace/TraceReader.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace qncomm {
namespace {

using Json = nlohmann::json;

/// What one write or read of a port can hold.
constexpr std::size_t MostRedacted = 16UL * 1024 * 1024;
/// 31 years.
constexpr std::int64_t LatestMs = 1'000'000'000'000;

struct KindName {
    const char* name;
    TraceKind kind;
};

constexpr std::array KindNames{KindName{"tx", TraceKind::Sent}, KindName{"rx", TraceKind::Received},
                               KindName{"event", TraceKind::Event}};

struct ShortEscape {
    char byte;
    char letter;
};

constexpr std::array ShortEscapes{ShortEscape{'"', '"'}, ShortEscape{'\\', '\\'},
                                  ShortEscape{'\r', 'r'}, ShortEscape{'\n', 'n'},
                                  ShortEscape{'\t', 't'}};

void AppendEscaped(std::string& line, char byte) {
    constexpr std::string_view hex = "0123456789abcdef";
    for (const ShortEscape& escape : ShortEscapes) {
        if (escape.byte != byte) continue;
        line += {'\\', escape.letter};
        return;
    }
    if (byte >= ' ' && byte <= '~') {
        line += byte;
        return;
    }
    const auto value = static_cast<unsigned char>(byte);
    line += "\\u00";
    line += {hex[value >> 4U], hex[value & 0x0FU]};
}

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

} // namespace

std::string WriteTraceLine(std::int64_t lMs, TraceKind kind, std::string_view sBytes,
                           std::size_t redacted) {
    std::string line = "{\"ms\":" + std::to_string(lMs) + ",\"kind\":\"";
    line += KindNames.at(static_cast<std::size_t>(kind)).name;
    line += "\",\"bytes\":\"";
    for (const char byte : sBytes)
        AppendEscaped(line, byte);
    line += '"';
    if (redacted > 0) line += ",\"redacted\":" + std::to_string(redacted);
    return line += '}';
}

std::string TraceLineOf(const TraceRecord& record) {
    return WriteTraceLine(record.ms, record.kind, record.bytes, record.redacted);
}

std::optional<TraceRecord> ParseTraceLine(std::string_view sLine) {
    const Json line = Json::parse(sLine.begin(), sLine.end(), nullptr, false);
    if (!line.is_object() || !line.contains("ms") || !line.contains("kind")
        || !line.contains("bytes") || !line["ms"].is_number_integer() || !line["bytes"].is_string())
        return std::nullopt;
    const auto kind = std::ranges::find_if(
        KindNames, [&](const KindName& known) { return line["kind"] == known.name; });
    std::optional<std::string> bytes = BytesOf(line["bytes"].get_ref<const std::string&>());
    if (kind == KindNames.end() || !bytes) return std::nullopt;
    TraceRecord record{0, line["ms"].get<std::int64_t>(), kind->kind, std::move(*bytes), 0};
    if (line.contains("redacted") && line["redacted"].is_number_unsigned())
        record.redacted = line["redacted"].get<std::size_t>();
    if (record.ms < 0 || record.ms > LatestMs) return std::nullopt;
    if (record.redacted > MostRedacted || (record.redacted > 0 && !record.bytes.empty()))
        return std::nullopt;
    return record;
}

} // namespace qncomm

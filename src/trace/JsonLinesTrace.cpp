#include "trace/JsonLinesTrace.h"

#include "platform/SystemErrors.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace qncomm {
namespace {

constexpr std::array<std::string_view, 3> Kinds{"tx", "rx", "event"};

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

} // namespace

JsonLinesTrace::JsonLinesTrace(const std::string& sPath)
    : mFile(::open(sPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666)) {
    if (!mFile) mResult = OpenFailure(errno);
}

std::string JsonLinesTrace::LineOf(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    std::string line = "{\"ms\":" + std::to_string(lMs) + ",\"kind\":\"";
    line += Kinds.at(static_cast<std::size_t>(kind));
    line += "\",\"bytes\":\"";
    for (const char byte : sBytes)
        AppendEscaped(line, byte);
    return line += "\"}";
}

void JsonLinesTrace::Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (!mResult.Ok()) return;
    if (!mStart) mStart = lMs;
    const std::string line = LineOf(lMs - *mStart, kind, sBytes) + "\n";
    if (const int error = WriteAll(mFile.Get(), line); error != 0)
        mResult = {IoStatus::Failed, error, SystemText(error)};
}

} // namespace qncomm

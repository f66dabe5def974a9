#include "HostFileKind.h"

#include "common/Text.h"
#include "platform/SystemFiles.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

namespace qnctl {
namespace {

using namespace std::string_view_literals;

struct Beginning {
    std::string_view bytes;
    HostFileKind kind;
};

// PCX has a version in its second byte and always packs its rows.
constexpr std::array Beginnings{
    Beginning{"\x0A\x05\x01"sv, HostFileKind::Image},
    Beginning{"\x0A\x03\x01"sv, HostFileKind::Image},
    Beginning{"\x0A\x02\x01"sv, HostFileKind::Image},
    Beginning{"\x00\x01\x00\x00"sv, HostFileKind::Font},
    Beginning{"true"sv, HostFileKind::Font},
};

/// The number of a program line that is larger than the one before: "10 PRINT" has one, "1 2 3" and
/// "1;a" have none.
std::optional<std::uint32_t> NumberOf(std::string_view line, std::uint32_t before) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc() || number <= before) return std::nullopt;
    const std::string_view rest = line.substr(static_cast<std::size_t>(end - line.data()));
    const std::size_t first = rest.find_first_not_of(" \t");
    if (first == std::string_view::npos) return std::nullopt;
    const char c = rest[first];
    const bool statement = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '\'';
    return statement ? std::optional(number) : std::nullopt;
}

bool IsProgram(std::string_view text) {
    constexpr unsigned char firstOfText = 0x20;
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) >= firstOfText || c == '\r' || c == '\n' || c == '\t';
    });
    if (!plain || text.find_first_not_of(" \t\r\n") == std::string_view::npos) return false;
    std::uint32_t last = 0;
    for (const std::string& line : qncomm::SplitKeepEmpty(text, "\n")) {
        const std::string trimmed = qncomm::Trim(qncomm::ReplaceAll(line, "\r", ""));
        if (trimmed.empty()) continue;
        const auto number = NumberOf(trimmed, last);
        if (!number) return false;
        last = *number;
    }
    return true;
}

} // namespace

HostFileKind KindOf(const std::string& path) {
    constexpr std::size_t largestProgram = 1U << 20U; // far beyond any printer's memory
    const auto file = qncomm::SystemFiles().Open(path);
    const std::string text = file->ReadSome(largestProgram);
    for (const Beginning& beginning : Beginnings)
        if (text.starts_with(beginning.bytes)) return beginning.kind;
    const bool whole = text.size() == file->Length();
    return whole && IsProgram(text) ? HostFileKind::Program : HostFileKind::Other;
}

} // namespace qnctl

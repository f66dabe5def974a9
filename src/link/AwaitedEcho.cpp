#include "AwaitedEcho.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t LongestCompared = 4096; ///< a payload is no line, however long it is
constexpr std::size_t ShortestCut = 64;       ///< no printer keeps less of a line

bool EndsLine(char c) {
    return c == '\r' || c == '\n';
}

char Stripped(char c) {
    return static_cast<char>(c & 0x7F);
}

bool IsCompared(char c) {
    return Stripped(c) >= ' ' && Stripped(c) != 0x7F;
}

/// What of a line is compared.
std::string Plain(std::string_view line) {
    std::string plain;
    for (const char c : line.substr(0, LongestCompared))
        if (IsCompared(c)) plain += Stripped(c);
    return plain;
}

/// Where the last so many characters of a line that are compared begin.
std::size_t BeginOfLast(std::size_t count, std::string_view line) {
    if (line.size() > LongestCompared) return 0;
    std::size_t at = line.size();
    while (at > 0 && count > 0)
        count -= IsCompared(line[--at]) ? 1 : 0;
    return at;
}

bool Echoes(std::string_view line, std::string_view sent) {
    if (sent.empty()) return false;
    return line.ends_with(sent) || (line.size() >= ShortestCut && sent.starts_with(line));
}

} // namespace

void AwaitedEcho::Sent(std::string_view text) {
    while (!text.empty()) {
        const auto end =
            static_cast<std::size_t>(std::ranges::find_if(text, EndsLine) - text.begin());
        mCurrent.append(text.substr(0, std::min(end, LongestCompared - mCurrent.size())));
        if (end == text.size()) return;
        if (std::string line = Plain(std::exchange(mCurrent, {})); !line.empty())
            (mFirst.empty() ? mFirst : mLast) = std::move(line);
        text.remove_prefix(end + 1);
    }
}

std::optional<std::size_t> AwaitedEcho::FindIn(std::string_view line) const {
    const std::string plain = Plain(line);
    for (const std::string* const sent : {&mFirst, &mLast})
        if (Echoes(plain, *sent)) return BeginOfLast(std::min(sent->size(), plain.size()), line);
    return std::nullopt;
}

} // namespace qncomm

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

/// What of a line is compared.
std::string Plain(std::string_view line) {
    std::string plain;
    for (const char c : line.substr(0, LongestCompared)) {
        const char stripped = static_cast<char>(c & 0x7F);
        if (stripped >= ' ' && stripped != 0x7F) plain += stripped;
    }
    return plain;
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

bool AwaitedEcho::Is(std::string_view line) const {
    const std::string plain = Plain(line);
    return Echoes(plain, mFirst) || Echoes(plain, mLast);
}

} // namespace qncomm

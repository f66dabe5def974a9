#include "common/Text.h"

#include <algorithm>

namespace qncomm {
namespace {

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

template <class Convert>
std::string Mapped(std::string_view text, Convert convert) {
    std::string mapped(text);
    std::transform(mapped.begin(), mapped.end(), mapped.begin(), convert);
    return mapped;
}

/// Calls take for each piece between separators, empty ones included.
template <class Take>
void ForEachPiece(std::string_view text, std::string_view separator, Take take) {
    std::size_t from = 0;
    for (std::size_t at = text.find(separator); at != std::string_view::npos;
         at = text.find(separator, from)) {
        take(text.substr(from, at - from));
        from = at + separator.size();
    }
    take(text.substr(from));
}

} // namespace

std::string UpperCase(std::string_view sText) {
    return Mapped(sText, Upper);
}
std::string LowerCase(std::string_view sText) {
    return Mapped(sText, Lower);
}

bool EqualNoCase(std::string_view sLeft, std::string_view sRight) {
    return std::equal(sLeft.begin(), sLeft.end(), sRight.begin(), sRight.end(),
                      [](char l, char r) { return Lower(l) == Lower(r); });
}

std::string Trim(std::string_view sText) {
    const std::size_t first = sText.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(sText.substr(first, sText.find_last_not_of(' ') - first + 1));
}

std::string ReplaceAll(std::string_view sText, std::string_view sWhat, std::string_view sBy) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = sText.find(sWhat); at != std::string_view::npos;
         at = sText.find(sWhat, from)) {
        result.append(sText, from, at - from).append(sBy);
        from = at + sWhat.size();
    }
    return result.append(sText, from);
}

std::vector<std::string> SplitKeepEmpty(std::string_view sText, std::string_view sSeparator) {
    std::vector<std::string> pieces;
    if (sText.empty()) return pieces;
    ForEachPiece(sText, sSeparator, [&](std::string_view piece) { pieces.emplace_back(piece); });
    return pieces;
}

std::vector<std::string> SplitNonEmpty(std::string_view sText, std::string_view sSeparator) {
    std::vector<std::string> pieces;
    ForEachPiece(sText, sSeparator, [&](std::string_view piece) {
        if (!piece.empty()) pieces.emplace_back(piece);
    });
    return pieces;
}

std::vector<std::string> SplitAtBlankRuns(std::string_view sText, std::size_t lMost) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    while (pieces.size() + 1 < lMost) {
        const std::size_t run = sText.find("  ", from);
        if (run == std::string_view::npos) break;
        pieces.emplace_back(sText.substr(from, run - from));
        from = std::min(sText.find_first_not_of(' ', run), sText.size());
    }
    pieces.emplace_back(sText.substr(from));
    return pieces;
}

std::string CollapseSpaces(std::string_view sText) {
    std::string collapsed;
    for (const char c : sText)
        if (c != ' ' || !collapsed.ends_with(' ')) collapsed += c;
    return collapsed;
}

std::string NormalizeLineEnds(std::string_view sText) {
    const auto isEnd = [](char c) { return c == '\r' || c == '\n'; };
    std::string normalized;
    normalized.reserve(sText.size() + sText.size() / 16);
    while (!sText.empty()) {
        const auto end = std::find_if(sText.begin(), sText.end(), isEnd);
        const auto length = static_cast<std::size_t>(end - sText.begin());
        normalized.append(sText, 0, length);
        sText.remove_prefix(length);
        if (sText.empty()) break;
        normalized += CrLf;
        sText.remove_prefix(sText.size() > 1 && isEnd(sText[1]) ? 2 : 1);
    }
    return normalized;
}

std::string Strip8thBit(std::string_view sText) {
    return Mapped(sText, [](char c) { return static_cast<char>(c & 0x7F); });
}

std::string Quoted(std::string_view sText) {
    return '"' + std::string(sText) + '"';
}

std::string FileNameOf(std::string_view sPath) {
    return std::string(sPath.substr(sPath.find_last_of('/') + 1));
}

} // namespace qncomm

#include "trace/TraceRows.h"

#include "common/ControlNames.h"
#include "common/Windows1252.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t LongestText = 120; ///< bytes of a row
constexpr std::size_t HexBytes = 16;

std::string HexOf(char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    return {digits[value >> 4], digits[value & 15]};
}

void AppendNamed(std::string& text, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    const char16_t character = CharacterOf(byte);
    if (value < ControlCharacterNames.size())
        text.append("<").append(ControlCharacterNames[value]).append(">");
    else if (character >= 0x7F && character < 0xA0)
        text.append("<").append(HexOf(byte)).append(">");
    else
        text += byte;
}

std::string HexRow(std::string_view bytes) {
    std::string digits;
    std::string text;
    for (const char byte : bytes) {
        digits += HexOf(byte) + " ";
        text += byte >= ' ' && byte < '\x7F' ? byte : '.';
    }
    digits.resize(HexBytes * 3, ' ');
    return digits + " " + text;
}

} // namespace

TraceRows::TraceRows(Form form, Show show) : mForm(form), mShow(std::move(show)) {}

void TraceRows::Add(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (kind != mRow.kind) Flush();
    mRow.kind = kind;
    if (kind == TraceKind::Event) return mShow({lMs, kind, std::string(sBytes)});
    while (!sBytes.empty()) {
        if (mRow.text.empty()) mRow.ms = lMs;
        const std::string_view piece = sBytes.substr(0, MissingOfRow(sBytes));
        mRow.text += piece;
        sBytes.remove_prefix(piece.size());
        if (IsWhole()) Flush();
    }
}

void TraceRows::Flush() {
    if (mRow.text.empty()) return;
    const TraceRow row{mRow.ms, mRow.kind, Text()};
    mRow.text.clear();
    mShow(row);
}

std::size_t TraceRows::MissingOfRow(std::string_view bytes) const {
    if (mForm == Form::Hex) return HexBytes - mRow.text.size();
    const std::string_view fits = bytes.substr(0, LongestText - mRow.text.size());
    return std::min(fits.find('\n'), fits.size() - 1) + 1;
}

bool TraceRows::IsWhole() const {
    if (mForm == Form::Hex) return mRow.text.size() == HexBytes;
    return mRow.text.back() == '\n' || mRow.text.size() == LongestText;
}

std::string TraceRows::Text() const {
    if (mForm == Form::Hex) return HexRow(mRow.text);
    std::string text;
    text.reserve(mRow.text.size() + HexBytes); // the line's end has names
    const auto isPlain = [](char byte) { return byte >= ' ' && byte < '\x7F'; };
    for (auto at = mRow.text.cbegin(); at != mRow.text.cend();) {
        const auto run = std::find_if_not(at, mRow.text.cend(), isPlain);
        text.append(at, run);
        for (at = run; at != mRow.text.cend() && !isPlain(*at); ++at)
            AppendNamed(text, *at);
    }
    return text;
}

} // namespace qncomm

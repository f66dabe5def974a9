#include "common/SettingsDocument.h"

#include "common/Text.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view HexDigits = "0123456789ABCDEF";

std::string Escaped(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        const auto byte = static_cast<unsigned char>(c);
        const bool edgeBlank = c == ' ' && (i == 0 || i + 1 == value.size());
        if (c == '\\') {
            text += "\\\\";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\r') {
            text += "\\r";
        } else if (byte < 0x20 || byte == 0x7F || edgeBlank) {
            text.append("\\x").append({HexDigits[byte >> 4], HexDigits[byte & 15]});
        } else {
            text += c;
        }
    }
    return text;
}

/// The byte that the escape at the start of text stands for, and how many characters the escape
/// has. Nothing when it is broken.
std::optional<std::pair<char, std::size_t>> Escape(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    switch (text[1]) {
    case '\\':
        return std::pair{'\\', std::size_t{2}};
    case 'n':
        return std::pair{'\n', std::size_t{2}};
    case 'r':
        return std::pair{'\r', std::size_t{2}};
    case 'x':
        break;
    default:
        return std::nullopt;
    }
    if (text.size() < 4) return std::nullopt;
    unsigned byte = 0;
    const char* last = text.data() + 4;
    if (std::from_chars(text.data() + 2, last, byte, 16).ptr != last) return std::nullopt;
    return std::pair{static_cast<char>(byte), std::size_t{4}};
}

/// A backslash that begins no escape stands for itself: a person wrote it, as in a path.
std::string Unescaped(std::string_view text) {
    std::string value;
    while (!text.empty()) {
        const auto escape = text.front() == '\\' ? Escape(text) : std::nullopt;
        value += escape ? escape->first : text.front();
        text.remove_prefix(escape ? escape->second : 1);
    }
    return value;
}

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

std::string_view WithoutBlanks(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

/// What a line says, without the carriage return of its end and the blanks around it.
std::string_view Content(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    return WithoutBlanks(line);
}

bool IsBlank(std::string_view line) {
    return Content(line).empty();
}

bool IsComment(std::string_view line) {
    return Content(line).starts_with(';');
}

/// The text behind the first "=", which a line with a key has.
std::string_view ValueText(std::string_view line) {
    const std::string_view content = Content(line);
    return WithoutBlanks(content.substr(content.find('=') + 1));
}

/// How sections and keys are found, whatever their case. No line holds a line feed.
std::string FoundBy(std::string_view section, std::string_view key) {
    return LowerCase(section).append("\n").append(LowerCase(key));
}

} // namespace

std::optional<SettingsDocument> SettingsDocument::Parse(std::string_view sText) {
    if (sText.find('\0') != std::string_view::npos) return std::nullopt;
    SettingsDocument document;
    if (sText.starts_with(ByteOrderMark)) {
        document.mMark = ByteOrderMark;
        sText.remove_prefix(ByteOrderMark.size());
    }
    if (sText.substr(0, sText.find('\n')).ends_with('\r')) document.mLineEnd = "\r";
    for (std::size_t number = 1; !sText.empty(); ++number) {
        const std::size_t end = std::min(sText.find('\n'), sText.size());
        if (!document.TakeLine(sText.substr(0, end)) && document.mStrayLine == 0)
            document.mStrayLine = number;
        sText.remove_prefix(std::min(end + 1, sText.size()));
    }
    return document;
}

bool SettingsDocument::TakeLine(std::string_view line) {
    const std::string_view content = Content(line);
    if (content.starts_with('[')) {
        // Keys behind a header that is cut belong to no section, least of all to the one before.
        const bool whole = content.ends_with(']');
        const std::string_view name = whole ? content.substr(1, content.size() - 2) : content;
        BeginPart(WithoutBlanks(name)).lines.emplace_back(line);
        mParts.back().end = 1;
        return whole;
    }
    Part& part = mParts.back();
    part.lines.emplace_back(line);
    if (IsBlank(line) || IsComment(line)) return true;
    const std::size_t equals = content.find('=');
    const bool isKey = mParts.size() > 1 && equals != std::string_view::npos && equals > 0;
    if (!isKey) return false;
    const std::string_view key = WithoutBlanks(content.substr(0, equals));
    mPlaces[FoundBy(part.name, key)] = {mParts.size() - 1, part.lines.size() - 1};
    part.end = part.lines.size();
    return true;
}

std::string SettingsDocument::Text() const {
    std::string text = mMark;
    for (const Part& part : mParts)
        for (const std::string& line : part.lines)
            text.append(line).append("\n");
    return text;
}

std::optional<std::string> SettingsDocument::Value(std::string_view sSection,
                                                   std::string_view sKey) const {
    const auto found = mPlaces.find(FoundBy(sSection, sKey));
    if (found == mPlaces.end()) return std::nullopt;
    const auto [part, line] = found->second;
    return Unescaped(ValueText(mParts[part].lines[line]));
}

std::vector<std::string> SettingsDocument::Sections() const {
    std::vector<std::string> names;
    for (std::size_t i = 1; i < mParts.size(); ++i)
        if (mLast.at(LowerCase(mParts[i].name)) == i) names.push_back(mParts[i].name);
    return names;
}

void SettingsDocument::SetValue(std::string_view sSection, std::string_view sKey,
                                std::string_view sValue) {
    const auto found = mPlaces.find(FoundBy(sSection, sKey));
    if (found == mPlaces.end()) {
        AddKey(sSection, sKey, Escaped(sValue));
        return;
    }
    std::string& line = mParts[found->second.part].lines[found->second.line];
    const std::string_view former = ValueText(line);
    line.replace(static_cast<std::size_t>(former.data() - line.data()), former.size(),
                 Escaped(sValue));
}

void SettingsDocument::AddKey(std::string_view section, std::string_view key,
                              std::string_view escaped) {
    Part& part = PartFor(section);
    // Comments directly below the last key belong to the section, unless they stand directly above
    // the next header: then they belong to that. Only lines without a key move, so mPlaces stays
    // true.
    std::size_t at = part.end;
    while (at < part.lines.size() && IsComment(part.lines[at]))
        ++at;
    const bool aboveNext = at == part.lines.size() && &part != &mParts.back();
    if (aboveNext) at = part.end;
    part.lines.insert(part.lines.begin() + static_cast<std::ptrdiff_t>(at),
                      std::string(key).append("=").append(escaped).append(mLineEnd));
    mPlaces[FoundBy(section, key)] = {static_cast<std::size_t>(&part - mParts.data()), at};
    part.end = at + 1;
}

SettingsDocument::Part& SettingsDocument::BeginPart(std::string_view name) {
    mLast[LowerCase(name)] = mParts.size();
    return mParts.emplace_back(Part{std::string(name), {}, 0});
}

SettingsDocument::Part& SettingsDocument::PartFor(std::string_view section) {
    if (const auto known = mLast.find(LowerCase(section)); known != mLast.end())
        return mParts[known->second];
    std::vector<std::string>& before = mParts.back().lines;
    if (!before.empty() && !IsBlank(before.back())) before.push_back(mLineEnd);
    Part& part = BeginPart(section);
    part.lines.push_back("[" + part.name + "]" + mLineEnd);
    part.end = 1;
    return part;
}

} // namespace qncomm

#include "common/SettingsDocument.h"

#include "common/Text.h"

#include <algorithm>
#include <charconv>

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

std::optional<std::string> Unescaped(std::string_view text) {
    std::string value;
    while (!text.empty()) {
        if (text.front() != '\\') {
            value += text.front();
            text.remove_prefix(1);
            continue;
        }
        const auto escape = Escape(text);
        if (!escape) return std::nullopt;
        value += escape->first;
        text.remove_prefix(escape->second);
    }
    return value;
}

} // namespace

std::optional<SettingsDocument> SettingsDocument::Parse(std::string_view sText) {
    SettingsDocument document;
    Section* section = nullptr;
    for (std::string& line : SplitNonEmpty(sText, "\n")) {
        if (line.ends_with('\r')) line.pop_back();
        line = Trim(line);
        if (line.empty() || line.front() == ';') continue;
        if (line.front() == '[') {
            if (line.back() != ']') return std::nullopt;
            section = &document.SectionFor(Trim(std::string_view(line).substr(1, line.size() - 2)));
            continue;
        }
        const std::size_t equals = line.find('=');
        if (section == nullptr || equals == std::string::npos || equals == 0) return std::nullopt;
        const auto value = Unescaped(Trim(std::string_view(line).substr(equals + 1)));
        if (!value) return std::nullopt;
        document.SetValue(section->name, Trim(std::string_view(line).substr(0, equals)), *value);
    }
    return document;
}

std::string SettingsDocument::Text() const {
    std::string text;
    for (const Section& section : mSections) {
        if (!text.empty()) text += '\n';
        text.append("[").append(section.name).append("]\n");
        for (const Entry& entry : section.entries)
            text.append(entry.key).append("=").append(Escaped(entry.value)).append("\n");
    }
    return text;
}

std::optional<std::string> SettingsDocument::Value(std::string_view sSection,
                                                   std::string_view sKey) const {
    const Section* section = FindSection(sSection);
    if (section == nullptr) return std::nullopt;
    for (const Entry& entry : section->entries)
        if (EqualNoCase(entry.key, sKey)) return entry.value;
    return std::nullopt;
}

void SettingsDocument::SetValue(std::string_view sSection, std::string_view sKey,
                                std::string_view sValue) {
    auto& entries = SectionFor(sSection).entries;
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return EqualNoCase(entry.key, sKey);
    });
    if (found != entries.end())
        found->value = sValue;
    else
        entries.push_back({std::string(sKey), std::string(sValue)});
}

const SettingsDocument::Section* SettingsDocument::FindSection(std::string_view sSection) const {
    const auto found = std::find_if(mSections.begin(), mSections.end(), [&](const Section& s) {
        return EqualNoCase(s.name, sSection);
    });
    return found != mSections.end() ? &*found : nullptr;
}

SettingsDocument::Section& SettingsDocument::SectionFor(std::string_view sSection) {
    const Section* found = FindSection(sSection);
    if (found != nullptr) return mSections[static_cast<std::size_t>(found - mSections.data())];
    return mSections.emplace_back(Section{std::string(sSection), {}});
}

} // namespace qncomm

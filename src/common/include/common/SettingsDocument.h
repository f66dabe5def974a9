#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Settings as a text that a person can read and edit:
///
///     [Section]
///     Key=value
///
/// Blank lines and lines that begin with ";" are skipped. In a value "\n", "\r", "\\" and "\xHH"
/// stand for the bytes that a line cannot carry. Sections and keys are compared without regard to
/// case; the spelling that was written first stays.
class SettingsDocument {
  public:
    /// Reads a text. Nothing when a line is neither blank, comment, section nor key, a byte escape
    /// is broken, or a key stands before the first section.
    static std::optional<SettingsDocument> Parse(std::string_view sText);

    /// The text that Parse reads back to the same document.
    std::string Text() const;

    std::optional<std::string> Value(std::string_view sSection, std::string_view sKey) const;
    void SetValue(std::string_view sSection, std::string_view sKey, std::string_view sValue);

  private:
    struct Entry {
        std::string key;
        std::string value;
    };
    struct Section {
        std::string name;
        std::vector<Entry> entries;
    };

    const Section* FindSection(std::string_view sSection) const;
    Section& SectionFor(std::string_view sSection);

    std::vector<Section> mSections;
};

} // namespace qncomm

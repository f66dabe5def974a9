#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qncomm {

/// Settings as a text that a person can read and edit:
///
///     ; a comment
///     [Section]
///     Key=value
///
/// Blank lines and lines that begin with ";" say nothing. In a value `\n`, `\r`, `\\` and `\xHH`
/// stand for the bytes that a line cannot carry. Sections and keys are compared without regard to
/// case. Of a key that stands twice in its section the last one counts, and a section may stand in
/// several parts.
///
/// What a person wrote stays: a write changes the text behind the "=" of one line, or adds lines.
/// Reading takes time in proportion to the text, a look-up or a write none that grows with it.
class SettingsDocument {
  public:
    /// Reads a text, with or without a byte order mark (UTF-8) and with LF or CR LF as line ends,
    /// both of which it keeps. A line that is neither blank, comment, section nor key, or a key
    /// before the first section, says nothing and stays; a backslash that begins no escape stands
    /// for itself. Nothing when a NUL byte is in it, as in a file that a power cut has torn.
    [[nodiscard]] static std::optional<SettingsDocument> Parse(std::string_view sText);

    /// The first line that says nothing although it is neither blank nor a comment, counted from 1;
    /// 0 when there is none.
    [[nodiscard]] std::size_t StrayLine() const { return mStrayLine; }

    /// The text that Parse reads back to the same document: every line as it was read, unless its
    /// value was set. Ends with a line end.
    [[nodiscard]] std::string Text() const;

    /// The value without its escapes; nothing when there is no such key.
    [[nodiscard]] std::optional<std::string> Value(std::string_view sSection,
                                                   std::string_view sKey) const;
    /// The names of the sections, each once, in their order.
    [[nodiscard]] std::vector<std::string> Sections() const;
    /// Sets any bytes as a key's value. A new key goes to the end of its section, a new section to
    /// the end of the text.
    void SetValue(std::string_view sSection, std::string_view sKey, std::string_view sValue);

  private:
    /// A section's header and what follows it, up to the next header. The first one has no header:
    /// it is what stands before all sections.
    struct Part {
        std::string name;
        std::vector<std::string> lines;
        std::size_t end = 0; ///< the line behind its last key; behind its header without any
    };
    struct Place {
        std::size_t part;
        std::size_t line;
    };

    bool TakeLine(std::string_view line);
    Part& BeginPart(std::string_view name);
    Part& PartFor(std::string_view section);
    void AddKey(std::string_view section, std::string_view key, std::string_view escaped);

    std::string mMark;    ///< the byte order mark, if there was one
    std::string mLineEnd; ///< what new lines have before their LF
    std::vector<Part> mParts = std::vector<Part>(1);
    std::unordered_map<std::string, std::size_t> mLast; ///< a section's last part
    std::unordered_map<std::string, Place> mPlaces;     ///< of each key
    std::size_t mStrayLine = 0;
};

} // namespace qncomm

#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace qncomm {

/// The progress of a long operation at a terminal: one line that is written over and goes away, or,
/// where that makes no sense, a line for each new message.
class StatusLine {
  public:
    /// How progress is shown.
    enum class Style {
        Off,       ///< not at all
        Transient, ///< a terminal: one line, with a bar when there is a percentage
        Lines,     ///< a file or a pipe: each message once, without percentages
    };

    /// The stream must outlive the object. lWidth is the terminal's width in columns.
    StatusLine(std::ostream& out, Style style, std::int32_t lWidth = 80);
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Counts from the next message on.
    void SetStyle(Style style) { mStyle = style; }

    /// Shows a message (UTF-8) and a percentage; one outside 1 to 100 shows no bar. The detail is
    /// what changes all the time, such as a rate: only a transient line shows it, behind the
    /// message.
    void Show(std::string_view sMessage, std::int32_t lPercent = 0, std::string_view sDetail = {});

    /// Takes the transient line away, so that other text can be written.
    void Clear();

    /// Leaves a message that stays, whatever the style (Off excepted).
    void Keep(std::string_view sMessage);

  private:
    std::ostream& mOut;
    Style mStyle;
    std::int32_t mWidth;
    bool mShown = false;
    std::string mLast;
};

} // namespace qncomm

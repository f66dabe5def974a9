#pragma once

#include <string>
#include <string_view>

namespace qncomm {

/// The clipboard's text as 8-bit text of the line with CR LF between its lines; whoever implements
/// it converts when it hands the text to the desktop, and turns lone line feeds into CR LF. The
/// primary selection of some desktops is not touched.
class Clipboard {
  public:
    virtual ~Clipboard() = default;

    /// Empty when the clipboard holds no text.
    virtual std::string Text() = 0;
    virtual void SetText(std::string_view sText) = 0;
};

} // namespace qncomm

#pragma once

#include <string>
#include <string_view>

namespace qncomm {

/// The clipboard's text as 8-bit text of the line with CR LF between its lines. A face or a host
/// implements it: it converts when it takes the text from the desktop or hands it over, and turns
/// lone line feeds into CR LF. Only the clipboard is meant, not the primary selection that some
/// desktops have beside it.
class Clipboard {
  public:
    virtual ~Clipboard() = default;

    /// Empty when the clipboard holds no text.
    virtual std::string Text() = 0;
    /// Replaces what the clipboard holds.
    virtual void SetText(std::string_view sText) = 0;
};

} // namespace qncomm

#pragma once

#include "qt/KeyCodes.h"

#include <cstdint>
#include <string_view>

namespace qncomm {

/// Receives what the user does in a terminal view. No member throws.
class TerminalInput {
  public:
    virtual ~TerminalInput() = default;

    /// A key goes down. False when a handler has swallowed it, so that it must not be typed.
    virtual bool KeyDown(const KeyStroke& stroke) = 0;
    /// Function key 1 to 8 of the toolbar.
    virtual void FunctionKey(std::int32_t lKey) = 0;
    /// Bytes for the line. False when it did not take all of them.
    virtual bool Type(std::string_view sBytes) = 0;
    /// The right button of the mouse, or the menu key.
    virtual void MenuAsked() = 0;
    /// Puts bytes of the line on the clipboard.
    virtual void Copy(std::string_view sText) = 0;
    virtual void Paste() = 0;
    /// The line is to be held in the break condition.
    virtual void Break() = 0;
};

} // namespace qncomm

#pragma once

#include "common/Clipboard.h"

namespace qncomm {

/// The desktop's clipboard; its primary selection is left alone.
class QtClipboard : public Clipboard {
  public:
    /// Characters that the line has no byte for come as "?"; lines end in CR LF.
    std::string Text() override;
    /// sText is 8-bit text of the line.
    void SetText(std::string_view sText) override;
};

} // namespace qncomm

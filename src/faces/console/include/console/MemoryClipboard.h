#pragma once

#include "common/Clipboard.h"

#include <string>
#include <string_view>

namespace qncomm {

/// A clipboard that only this process sees.
class MemoryClipboard final : public Clipboard {
  public:
    std::string Text() override { return mText; }
    /// Line ends become CR LF.
    void SetText(std::string_view sText) override;

  private:
    std::string mText;
};

} // namespace qncomm

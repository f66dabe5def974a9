#pragma once

#include "common/ControlModels.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// Colours of the system, as negative colour numbers; a face takes them from its palette.
enum SystemColor : std::int32_t {
    ActiveTitleColor =
        static_cast<std::int32_t>(0x80000002), ///< background while the control has the focus
    InactiveTitleColor = static_cast<std::int32_t>(0x80000003), ///< background while it has not
    ActiveTitleTextColor =
        static_cast<std::int32_t>(0x80000009), ///< text while the control has the focus
    InactiveTitleTextColor = static_cast<std::int32_t>(0x80000013), ///< text while it has not
};

/// The label of the title bar.
class TitleModel : public ControlModel {
  public:
    /// The text of the title bar, UTF-8. It is the control's property Caption.
    const std::string& Caption() const { return mCaption; }
    /// Raises ControlModel's changed event when the text is another one.
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

    /// The label's background: a SystemColor, or 0x00BBGGRR.
    std::int32_t BackColor() const { return mBackColor; }
    /// The colour of its text: a SystemColor, or 0x00BBGGRR.
    std::int32_t ForeColor() const { return mForeColor; }
    /// Sets both; the control does when the focus enters or leaves it.
    void SetColors(std::int32_t lBack, std::int32_t lFore) {
        Store(mBackColor, lBack);
        Store(mForeColor, lFore);
    }

    /// The user clicks the label. Ignored while the label is disabled or hidden.
    void Click() {
        if (TakesInput()) Clicked.Raise();
    }

    Event<> Clicked; ///< the control then gives the focus to its terminal

  private:
    std::string mCaption;
    std::int32_t mBackColor = InactiveTitleColor;
    std::int32_t mForeColor = InactiveTitleTextColor;
};

} // namespace qncomm

#pragma once

#include "common/ControlModels.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// Colours of the system, as negative colour numbers; a face takes them from its palette.
enum SystemColor : std::int32_t {
    ActiveTitleColor = static_cast<std::int32_t>(0x80000002),
    InactiveTitleColor = static_cast<std::int32_t>(0x80000003),
    ActiveTitleTextColor = static_cast<std::int32_t>(0x80000009),
    InactiveTitleTextColor = static_cast<std::int32_t>(0x80000013),
};

/// The label of the title bar.
class TitleModel : public ControlModel {
  public:
    const std::string& Caption() const { return mCaption; }
    void SetCaption(std::string_view sCaption) { Store(mCaption, std::string(sCaption)); }

    std::int32_t BackColor() const { return mBackColor; }
    std::int32_t ForeColor() const { return mForeColor; }
    void SetColors(std::int32_t lBack, std::int32_t lFore) {
        Store(mBackColor, lBack);
        Store(mForeColor, lFore);
    }

    /// The person clicks the label.
    void Click() {
        if (TakesInput()) Clicked.Raise();
    }

    Event<> Clicked;

  private:
    std::string mCaption;
    std::int32_t mBackColor = InactiveTitleColor;
    std::int32_t mForeColor = InactiveTitleTextColor;
};

} // namespace qncomm

#pragma once

#include "common/ControlModels.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// What a click does to a button.
enum class ToolbarButtonStyle {
    Push,   ///< springs back
    Toggle, ///< stays pressed until it is pressed again
};

/// One button as a face shows it.
struct ToolbarButton {
    std::string key; ///< what it does; a face finds its picture by it
    ToolbarButtonStyle style = ToolbarButtonStyle::Push; ///< all begin as push buttons
    bool pressed = false;                                ///< only a toggle button is ever pressed
    std::string toolTip; ///< 8-bit text of the line for texts, UTF-8 for files and programs
};

/// The control's toolbar: its buttons in their order, each with a key.
class ToolbarModel : public ControlModel {
  public:
    /// With the control's 18 buttons, "CommSettings" to "F8".
    ToolbarModel();

    /// The buttons from left to right; none is added or removed later.
    const std::vector<ToolbarButton>& Buttons() const { return mButtons; }
    /// The button of that key in any case, nullptr for none.
    const ToolbarButton* Find(std::string_view sKey) const;
    /// The button at position lIndex, from 1; raises 9 for one that is not there.
    const ToolbarButton& At(std::int32_t lIndex) const;
    /// Raises 5 for a key without a button.
    void SetToolTip(std::string_view sKey, std::string_view sTip);
    /// Raises 5 for a key without a button.
    void SetStyle(std::string_view sKey, ToolbarButtonStyle style);

    /// A ToolbarAlignValue; others are kept.
    std::int16_t Align() const { return mAlign; }
    /// Stores the number and raises the changed event; the frame follows with its next layout.
    void SetAlign(std::int16_t iAlign) { Store(mAlign, iAlign); }

    /// Updates a button's pressed state as its style has it; nothing for a key without a button.
    void Press(std::string_view sKey);
    /// The user clicks a button: presses it and raises Clicked. Nothing for a key without a button
    /// or while the toolbar is disabled or hidden.
    void Click(std::string_view sKey);

    /// The key of the button that was clicked.
    Event<const std::string&> Clicked;

  private:
    ToolbarButton* Locate(std::string_view key);
    ToolbarButton& Require(std::string_view key);

    std::vector<ToolbarButton> mButtons;
    std::int16_t mAlign = 1;
};

} // namespace qncomm

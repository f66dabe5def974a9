#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Another control on the form that the control sits on.
class ContainerControl {
  public:
    virtual ~ContainerControl() = default;
    /// The name of its class as the container knows it; a status bar answers "StatusBar", in any
    /// case.
    virtual std::string TypeName() const = 0;
    /// Moves its upper edge, counted from the top of the form in the container's units. The form
    /// puts a docked control back in its place.
    virtual void SetTop(std::int32_t lTop) = 0;
};

/// Where the container docks the control on its form.
enum DockAlign : std::int16_t {
    DockNone = 0,   ///< stays where the form puts it
    DockTop = 1,    ///< along the upper edge, as wide as the form
    DockBottom = 2, ///< along the lower edge, as wide as the form
};

/// What the control asks of the container that it sits in, which a face or a host implements.
/// Lengths are in the container's units. The control calls it on its own thread and never owns it.
class ControlHost {
  public:
    virtual ~ControlHost() = default;

    /// True at run time, False on a form that is being designed.
    virtual bool UserMode() const = 0;
    /// A persisted property has a new value.
    virtual void PropertyChanged(std::string_view sName) = 0;

    // -- What the container adds to the control

    /// Docks the control on its form: a DockAlign.
    virtual void SetAlign(std::int16_t iAlign) = 0;
    /// Shows or hides the control. The container then calls QNComm::UserControl_Show or
    /// UserControl_Hide, which opens or closes the port.
    virtual void SetVisible(bool bVisible) = 0;
    /// The control's height with all its parts.
    virtual std::int32_t Height() const = 0;
    /// Changes the height; the container then calls QNComm::UserControl_Resize.
    virtual void SetHeight(std::int32_t lHeight) = 0;

    // -- The form

    /// The height of the form's inner area: the control grows no higher.
    virtual std::int32_t ParentScaleHeight() const = 0;
    /// All controls of the form.
    virtual std::vector<std::shared_ptr<ContainerControl>> ParentControls() = 0;
};

struct PopUpMenu;

/// What the control asks of its own window. A face implements it.
class ControlWindow {
  public:
    virtual ~ControlWindow() = default;

    /// The width of the inner area, in the window's units, which all lengths here share.
    virtual std::int32_t ScaleWidth() const = 0;
    /// The height of the inner area.
    virtual std::int32_t ScaleHeight() const = 0;
    /// The height of the title bar.
    virtual std::int32_t TitleHeight() const = 0;
    /// The height of the toolbar when it is visible.
    virtual std::int32_t ToolbarHeight() const = 0;
    /// The height of one row of the terminal's text.
    virtual std::int32_t RowHeight() const = 0;

    /// Has QNComm::UserControl_Paint called, now or with the loop's next turn.
    virtual void Repaint() = 0;
    /// Shows the menu at the mouse pointer and calls QNComm::mnuPopUp_Click for what the user
    /// picks.
    virtual void ShowPopUpMenu(const PopUpMenu& menu) = 0;
    /// The application's help file; a face without help ignores it.
    virtual void SetHelpFile(std::string_view sPath) = 0;
};

} // namespace qncomm

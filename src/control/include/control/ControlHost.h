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
    virtual std::string TypeName() const = 0;
    virtual void SetTop(std::int32_t lTop) = 0;
};

/// Where the extender docks the control on its form.
enum DockAlign : std::int16_t { DockNone = 0, DockTop = 1, DockBottom = 2 };

/// What the control asks of the container it sits in. Lengths are in the container's units.
class ControlHost {
  public:
    virtual ~ControlHost() = default;

    /// True at run time, False on a form that is being designed.
    virtual bool UserMode() const = 0;
    /// A persisted property has a new value.
    virtual void PropertyChanged(std::string_view sName) = 0;

    // -- The extender: what the container adds to the control

    virtual void SetAlign(std::int16_t iAlign) = 0;
    virtual void SetVisible(bool bVisible) = 0;
    virtual std::int32_t Height() const = 0;
    virtual void SetHeight(std::int32_t lHeight) = 0;

    // -- The form

    virtual std::int32_t ParentScaleHeight() const = 0;
    /// All controls of the form.
    virtual std::vector<std::shared_ptr<ContainerControl>> ParentControls() = 0;
};

struct PopUpMenu;

/// What the control asks of its own window. A face implements it.
class ControlWindow {
  public:
    virtual ~ControlWindow() = default;

    virtual std::int32_t ScaleWidth() const = 0;
    virtual std::int32_t ScaleHeight() const = 0;
    virtual std::int32_t TitleHeight() const = 0;
    virtual std::int32_t ToolbarHeight() const = 0;
    /// The height of one row of the terminal's text.
    virtual std::int32_t RowHeight() const = 0;

    /// Has QNComm::UserControl_Paint called, now or with the loop's next turn.
    virtual void Repaint() = 0;
    /// Shows the menu at the pointer and calls QNComm::mnuPopUp_Click for what the person picks.
    virtual void ShowPopUpMenu(const PopUpMenu& menu) = 0;
    /// The application's help file; a face without help ignores it.
    virtual void SetHelpFile(std::string_view sPath) = 0;
};

} // namespace qncomm

#pragma once

#include "assembly/TerminalViewport.h"
#include "console/ConsoleAsker.h"
#include "control/ControlHost.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

class QNComm;

/// Container, window and screen of a control that runs without being shown. Its form is as large as
/// the control.
class ConsoleHost final : public ControlHost, public ControlWindow, public TerminalScreen {
  public:
    /// The asker must outlive the object; it says so when a capture ends because its file takes no
    /// more.
    explicit ConsoleHost(ConsoleAsker& asker) : mAsker(asker) {}

    /// The control that sits here, so that it can be hidden; nullptr takes it away.
    void Hold(QNComm* control) { mControl = control; }

    bool UserMode() const override { return true; }
    void PropertyChanged(std::string_view /*sName*/) override {}
    void SetAlign(std::int16_t /*iAlign*/) override {}
    /// Shows and hides the control, which takes the port and gives it back.
    void SetVisible(bool bVisible) override;
    std::int32_t Height() const override { return FormHeight; }
    void SetHeight(std::int32_t /*lHeight*/) override {}
    std::int32_t ParentScaleHeight() const override { return FormHeight; }
    std::vector<std::shared_ptr<ContainerControl>> ParentControls() override { return {}; }

    std::int32_t ScaleWidth() const override { return FormWidth; }
    std::int32_t ScaleHeight() const override { return FormHeight; }
    std::int32_t TitleHeight() const override { return 0; }
    std::int32_t ToolbarHeight() const override { return 0; }
    std::int32_t RowHeight() const override { return 1; }
    void Repaint() override {}
    void ShowPopUpMenu(const PopUpMenu& /*menu*/) override {}
    void SetHelpFile(std::string_view /*sPath*/) override {}

    void SetFocus() override {}
    void Move(const Rectangle& /*place*/) override {}
    void Changed() override {}
    void CaptureFailed(const std::string& sPath, const std::string& sReason) override;
    /// Whether a capture has ended because its file took no more.
    bool CaptureLost() const { return mCaptureLost; }

  private:
    static constexpr std::int32_t FormWidth = 80; ///< as a terminal counts
    static constexpr std::int32_t FormHeight = 25;

    ConsoleAsker& mAsker;
    QNComm* mControl = nullptr;
    bool mCaptureLost = false;
};

} // namespace qncomm

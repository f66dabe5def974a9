#pragma once

#include "TerminalInput.h"
#include "assembly/TerminalViewport.h"
#include "control/ControlHost.h"
#include "qt/QNCommWidget.h"

namespace qncomm {

/// What the control, its terminal and its viewport ask of the widget that they are shown on.
class QNCommWidget::Surroundings final : public ControlHost,
                                         public ControlWindow,
                                         public TerminalScreen,
                                         public TerminalInput {
  public:
    explicit Surroundings(QNCommWidget& widget) : mWidget(widget) {}

    /// ControlHost
    bool UserMode() const override;
    void PropertyChanged(std::string_view sName) override;
    void SetAlign(std::int16_t iAlign) override;
    void SetVisible(bool bVisible) override;
    std::int32_t Height() const override;
    void SetHeight(std::int32_t lHeight) override;
    std::int32_t ParentScaleHeight() const override;
    std::vector<std::shared_ptr<ContainerControl>> ParentControls() override;

    /// ControlWindow
    std::int32_t ScaleWidth() const override;
    std::int32_t ScaleHeight() const override;
    std::int32_t TitleHeight() const override;
    std::int32_t ToolbarHeight() const override;
    std::int32_t RowHeight() const override;
    void Repaint() override;
    void ShowPopUpMenu(const PopUpMenu& menu) override;
    void SetHelpFile(std::string_view sPath) override;

    /// TerminalScreen
    void SetFocus() override;
    void Move(const Rectangle& place) override;
    void Changed() override;
    void CaptureFailed(const std::string& sPath, const std::string& sReason) override;

    /// TerminalInput
    bool KeyDown(const KeyStroke& stroke) override;
    void FunctionKey(std::int32_t lKey) override;
    bool Type(std::string_view sBytes) override;
    void MenuAsked() override;
    void Copy(std::string_view sText) override;
    void Paste() override;
    void Break() override;

  private:
    QNCommWidget& mWidget;
};

} // namespace qncomm

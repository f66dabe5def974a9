// The frame around the terminal: where its pieces are and how they react.

#include "Members.h"
#include "common/Text.h"

namespace qncomm {
namespace {

constexpr std::string_view StatusBarType = "STATUSBAR";
constexpr std::int32_t BelowEveryForm = 50000;
constexpr std::int16_t RightButton = 2;

} // namespace

FrameSizes QNComm::Sizes() const {
    const ControlWindow& window = mParts.window;
    return {.scaleWidth = window.ScaleWidth(),
            .scaleHeight = window.ScaleHeight(),
            .titleHeight = window.TitleHeight(),
            .toolbarHeight = window.ToolbarHeight(),
            .rowHeight = window.RowHeight(),
            .toolbarVisible = Toolbar1.Visible(),
            .toolbarAlign = Toolbar1.Align()};
}

void QNComm::LayOut() {
    if (mParts.terminal.DisplayState() == DisplayOff) return;
    mParts.terminal.Move(TerminalPlace(Sizes()));
}

void QNComm::UserControl_Paint() {
    Toolbar1.SetVisible(ToolbarVisible());
    LayOut();
}

void QNComm::UserControl_Resize() {
    Refresh();
}

void QNComm::Refresh() {
    mParts.window.Repaint();
}

void QNComm::imgSizer_MouseUp(std::int32_t lY) {
    ControlHost& host = mParts.host;
    const std::int32_t height = host.Height();
    const std::int32_t drag =
        LimitedDrag(lY, height, host.ParentScaleHeight(), LeastHeight(Sizes()));
    if (drag != 0) host.SetHeight(height - drag);
    // Otherwise the form's status bar would keep its old place when the control grows or shrinks.
    for (const auto& control : host.ParentControls())
        if (UpperCase(control->TypeName()) == StatusBarType) control->SetTop(BelowEveryForm);
}

void QNComm::PDQComm1_MouseDown(std::int16_t iButton) {
    if (iButton == RightButton) mParts.window.ShowPopUpMenu({{{1, "Copy"}, {2, "Paste"}}});
}

void QNComm::mnuPopUp_Click(std::int16_t iIndex) {
    if (iIndex == 1) CopyCB();
    if (iIndex == 2) PasteCB();
}

} // namespace qncomm

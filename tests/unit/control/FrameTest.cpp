#include "control/FrameLayout.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::FakeFormControl;

const FrameSizes Sizes{.scaleWidth = 800,
                       .scaleHeight = 1000,
                       .titleHeight = 20,
                       .toolbarHeight = 30,
                       .rowHeight = 12,
                       .toolbarVisible = true,
                       .toolbarAlign = ToolbarTop};

TEST(FrameLayout, TheTerminalFillsWhatTitleAndToolbarLeave) {
    FrameSizes sizes = Sizes;
    EXPECT_EQ(TerminalPlace(sizes), (Rectangle{0, 50, 800, 950}));
    sizes.toolbarAlign = ToolbarBottom;
    EXPECT_EQ(TerminalPlace(sizes), (Rectangle{0, 20, 800, 950}));
    sizes.toolbarVisible = false;
    EXPECT_EQ(TerminalPlace(sizes), (Rectangle{0, 20, 800, 980}));
    sizes.scaleHeight = 15;
    EXPECT_EQ(TerminalPlace(sizes), (Rectangle{0, 20, 800, 0}));
}

TEST(FrameLayout, TheLeastHeightHoldsTitleToolbarAndOneRow) {
    FrameSizes sizes = Sizes;
    EXPECT_EQ(LeastHeight(sizes), 62);
    sizes.toolbarVisible = false;
    EXPECT_EQ(LeastHeight(sizes), 32);
}

TEST(FrameLayout, ADragIsLimitedBothWaysAndNeverTurnsRound) {
    EXPECT_EQ(LimitedDrag(-500, 1000, 2000, 62), -500);
    EXPECT_EQ(LimitedDrag(-5000, 1000, 2000, 62), -1000);
    EXPECT_EQ(LimitedDrag(-500, 2500, 2000, 62), 0);
    EXPECT_EQ(LimitedDrag(500, 1000, 2000, 62), 500);
    EXPECT_EQ(LimitedDrag(5000, 1000, 2000, 62), 938);
    EXPECT_EQ(LimitedDrag(500, 50, 2000, 62), 0);
    EXPECT_EQ(LimitedDrag(0, 1000, 2000, 62), 0);
}

class Frame : public ControlFixture {};

TEST_F(Frame, TheGripMakesTheControlTallerAndShorter) {
    mControl->imgSizer_MouseUp(-500);
    EXPECT_EQ(mHost.mHeight, 1500);
    mControl->imgSizer_MouseUp(-5000);
    EXPECT_EQ(mHost.mHeight, 2000);
    mControl->imgSizer_MouseUp(300);
    EXPECT_EQ(mHost.mHeight, 1700);
    mControl->imgSizer_MouseUp(99999);
    EXPECT_EQ(mHost.mHeight, 62);
}

TEST_F(Frame, StatusBarsGoBelowEveryFormAfterEveryDrag) {
    const auto bar = std::make_shared<FakeFormControl>("StatusBar");
    const auto other = std::make_shared<FakeFormControl>("StatusBarX");
    mHost.mControls = {other, bar};
    mControl->imgSizer_MouseUp(0);
    EXPECT_EQ(mHost.mHeight, 1000);
    EXPECT_EQ(bar->mTop, 50000);
    EXPECT_EQ(other->mTop, 7);
    bar->mTop = 0;
    mControl->imgSizer_MouseUp(10);
    EXPECT_EQ(bar->mTop, 50000);
}

TEST_F(Frame, AStatusBarIsMovedAfterTheControlWasResized) {
    const auto bar = std::make_shared<FakeFormControl>("statusbar");
    mHost.mControls = {bar, std::make_shared<FakeFormControl>("StatusBar")};
    mHost.mOnHeight = [&] { bar->mTop = 0; }; // the form lays itself out
    mControl->imgSizer_MouseUp(-10);
    for (const auto& each : mHost.mControls)
        EXPECT_EQ(each->mTop, 50000);
}

TEST_F(Frame, PaintingLaysOutWhateverTheDisplayStateUnlessItIsOff) {
    mTerminal.mState = DisplayOff;
    mControl->UserControl_Paint();
    EXPECT_EQ(mTerminal.mPlace, Rectangle{});
    mTerminal.mState = DisplayDesign;
    mControl->UserControl_Paint();
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 50, 800, 950}));
}

TEST_F(Frame, AResizeRepaints) {
    mWindow.mScaleHeight = 500;
    mControl->UserControl_Resize();
    EXPECT_EQ(mWindow.mRepaints, 1);
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 50, 800, 450}));
    mControl->SetToolbarAlign(ToolbarBottom);
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 20, 800, 450}));
}

} // namespace
} // namespace qncomm

// What the control looks like, on the grid that it really has, and what its host keeps of that.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::Not;

class Appearance : public AssembledFixture {};

TEST_F(Appearance, ColoursAndFontAreTheGrids) {
    const int changes = mScreen.mChanges;
    Control().SetBackColor(0x00112233);
    Control().SetForeColor(0x00445566);
    Control().SetFont({"Serif", 9.75F});
    EXPECT_EQ(Control().BackColor(), 0x00112233);
    EXPECT_EQ(mAssembly->Grid().Appearance().backColor, 0x00112233);
    EXPECT_EQ(mAssembly->Grid().Appearance().foreColor, 0x00445566);
    EXPECT_EQ(Control().TerminalFontName(), "Serif");
    EXPECT_EQ(Control().TerminalFontSize(), "9.75");
    Control().SetTerminalFontSize("12");
    Control().SetTerminalFontName("Sans");
    EXPECT_EQ(Control().Font(), (TerminalFont{"Sans", 12.0F}));
    EXPECT_GT(mScreen.mChanges, changes + 3) << "the screen is told";
}

TEST_F(Appearance, WhatIsSetComesBackFromTheBag) {
    Control().SetBackColor(255);
    Control().SetForeColor(65280);
    Control().SetBackStyle(0);
    Control().SetBorderStyle(1);
    Control().SetEnabled(false);
    Control().SetToolbarVisible(false);
    Control().SetToolbarAlign(ToolbarBottom);
    MemoryPropertyBag bag;
    Control().UserControl_WriteProperties(bag);
    Assemble("sim:R7G");
    EXPECT_EQ(Control().BackColor(), 15);
    Control().UserControl_ReadProperties(bag);
    EXPECT_EQ(Control().BackColor(), 255);
    EXPECT_EQ(Control().ForeColor(), 65280);
    EXPECT_EQ(Control().BackStyle(), 0);
    EXPECT_EQ(Control().BorderStyle(), 1);
    EXPECT_FALSE(Control().Enabled());
    EXPECT_FALSE(Control().ToolbarVisible());
    EXPECT_EQ(Control().ToolbarAlign(), ToolbarBottom);
    EXPECT_EQ(mAssembly->Grid().Rows(), 300);
}

TEST_F(Appearance, TheToolbarGivesItsPlaceToTheTerminal) {
    EXPECT_EQ(mScreen.mPlace, (Rectangle{0, 50, 800, 950}));
    Control().SetToolbarVisible(false);
    EXPECT_EQ(mScreen.mPlace, (Rectangle{0, 20, 800, 980}));
    Control().SetToolbarVisible(true);
    Control().SetToolbarAlign(ToolbarBottom);
    EXPECT_EQ(mScreen.mPlace, (Rectangle{0, 20, 800, 950}));
    mWindow.mScaleHeight = 400;
    Control().Refresh();
    EXPECT_EQ(mScreen.mPlace, (Rectangle{0, 20, 800, 350}));
}

TEST_F(Appearance, TheCursorFollowsTheTextAndGoesWhereItIsPut) {
    Show().DoAutoconnect();
    EXPECT_EQ(Control().CursorRow(), 1);
    EXPECT_EQ(Control().CursorColumn(), 1);
    mAssembly->Viewport().Type("PRINT");
    mReactor.Pass(100);
    EXPECT_EQ(Control().CursorColumn(), 6);
    Control().SetCursorRow(40);
    EXPECT_EQ(Control().CursorRow(), 40);
    EXPECT_THAT(mHost.mChanged, Contains("CursorRow"));
    Control().SetCursorRow(32000);
    EXPECT_EQ(Control().CursorRow(), 300) << "the nearest that there is";
}

TEST_F(Appearance, TheHelpFileIsTheApplications) {
    mHost.mChanged.clear();
    Control().SetHelpFile("/usr/share/doc/qncomm/help.html");
    EXPECT_EQ(mWindow.mHelpFile, "/usr/share/doc/qncomm/help.html");
    EXPECT_THAT(mHost.mChanged, Not(Contains("HelpFile")));
}

TEST_F(Appearance, TheCloseButtonGivesThePortBackOnceTheHostHasHiddenTheControl) {
    Show();
    EXPECT_TRUE(mAssembly->Serial().PortOpen());
    Control().cmdClose.Click();
    EXPECT_FALSE(mHost.mVisible);
    Control().UserControl_Hide(); // as the container answers
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
    Show();
    EXPECT_TRUE(mAssembly->Serial().PortOpen()) << "hidden, not gone";
}

TEST_F(Appearance, AControlThatWasTornDownSaysSoAndKeepsItsLooks) {
    Show().SetBackColor(7);
    Control().TearDown();
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
    EXPECT_EQ(NumberRaisedBy([&] { Control().Files("c:"); }), RtObjectNotSet);
    Control().TearDown();
    EXPECT_EQ(Control().BackColor(), 7);
    Control().UserControl_ReadProperties(MemoryPropertyBag{});
    Control().SetRegSettings(mSettings);
    EXPECT_EQ(Control().PrinterType(), "R7G") << "and can be brought up again";
}

} // namespace
} // namespace qncomm::testing

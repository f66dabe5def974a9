// The bar with the control's caption and its close button.

#include "qt/TitleBar.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

namespace qncomm {
namespace {

using testing::Named;
using testing::Spoken;
using testing::SpokenField;

class TitleBarOfAControl : public ::testing::Test {
  protected:
    TitleBarOfAControl() {
        mTitle.SetCaption("Printer on com1:");
        mForm.resize(320, 24);
        (new QVBoxLayout(&mForm))->addWidget(&mBar);
    }

    QColor Back() { return mBar.grab().toImage().pixelColor(mBar.width() / 2, 1); }
    QColor Desktop(QPalette::ColorGroup group, QPalette::ColorRole role) {
        return mForm.palette().color(group, role);
    }

    TitleModel mTitle;
    ButtonModel mClose;
    testing::RecordingDesktop mDesktop;
    ActionGuard mGuard{mDesktop};
    QWidget mForm;
    TitleBar& mBar = *new TitleBar(mTitle, mClose, mGuard, &mForm);
};

TEST_F(TitleBarOfAControl, IsSpokenAsItsCaptionAndItsButton) {
    EXPECT_EQ(Spoken(Named<QWidget>(mBar, "lblCaption")),
              (SpokenField{"Printer on com1:", QAccessible::StaticText}));
    EXPECT_EQ(Spoken(Named<QWidget>(mBar, "cmdClose")),
              (SpokenField{"Close", QAccessible::Button}));
    mTitle.SetCaption("Gone");
    EXPECT_EQ(Named<QLabel>(mBar, "lblCaption").text(), u"Gone"_qs);
}

TEST_F(TitleBarOfAControl, HasTheDesktopsTitleColoursActiveAndInactive) {
    QPalette desktop = mForm.palette();
    desktop.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0x91, 0x91, 0x91));
    mForm.setPalette(desktop);
    testing::ShowActive(mForm);
    EXPECT_EQ(Back(), QColor(0x91, 0x91, 0x91));
    mTitle.SetColors(ActiveTitleColor, ActiveTitleTextColor);
    EXPECT_EQ(Back(), Desktop(QPalette::Active, QPalette::Highlight));
    testing::SavePicture(mBar, u"title-bar-active"_qs);
}

TEST_F(TitleBarOfAControl, IsGreyWhenInactiveOnADesktopWithoutAColourForThat) {
    QPalette desktop = mForm.palette();
    desktop.setColor(QPalette::Inactive, QPalette::Highlight,
                     Desktop(QPalette::Active, QPalette::Highlight));
    mForm.setPalette(desktop);
    testing::ShowActive(mForm);
    EXPECT_EQ(Back().rgb(), Desktop(QPalette::Active, QPalette::Mid).rgb());
    EXPECT_EQ(mBar.palette().color(QPalette::WindowText), QColor(Qt::black));
    testing::SavePicture(mBar, u"title-bar-inactive"_qs);
}

TEST_F(TitleBarOfAControl, FollowsADarkDesktop) {
    testing::ShowActive(mForm);
    mTitle.SetColors(ActiveTitleColor, ActiveTitleTextColor);
    const testing::DarkDesktop dark;
    EXPECT_EQ(Back(), testing::DarkPalette().color(QPalette::Active, QPalette::Highlight));
    testing::SavePicture(mBar, u"title-bar-dark"_qs);
}

TEST_F(TitleBarOfAControl, HandsInClicksOnTheCaptionAndOnTheButton) {
    int captionClicks = 0;
    int closeClicks = 0;
    const Subscription caption = mTitle.Clicked.Connect([&] { ++captionClicks; });
    const Subscription close = mClose.Clicked.Connect([&] { ++closeClicks; });
    testing::ShowActive(mForm);
    QTest::mouseClick(&Named<QWidget>(mBar, "lblCaption"), Qt::LeftButton);
    EXPECT_EQ(captionClicks, 1);
    EXPECT_EQ(closeClicks, 0);
    QTest::mouseClick(&Named<QWidget>(mBar, "cmdClose"), Qt::LeftButton);
    EXPECT_EQ(captionClicks, 1);
    EXPECT_EQ(closeClicks, 1);
}

TEST_F(TitleBarOfAControl, ALongCaptionIsCutAndTheButtonStays) {
    mTitle.SetCaption(std::string(500, 'W'));
    testing::ShowActive(mForm);
    EXPECT_EQ(mForm.width(), 320);
    EXPECT_TRUE(mBar.rect().contains(Named<QWidget>(mBar, "cmdClose").geometry()));
}

} // namespace
} // namespace qncomm

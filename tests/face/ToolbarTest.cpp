// The toolbar, its pictures and the menu of the right button.

#include "qt/Icons.h"
#include "qt/PopUpMenuView.h"
#include "qt/ToolbarView.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include "common/QNError.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <memory>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::FocusName;
using testing::RecordingDesktop;
using testing::SavePicture;
using testing::Spoken;

class Toolbar : public ::testing::Test {
  protected:
    Toolbar() {
        mClicks = mModel.Clicked.Connect([this](const std::string& key) { mKeys.push_back(key); });
    }

    QToolButton& Button(const std::string& key) { return *mView.ButtonOf(key); }

    ToolbarModel mModel;
    RecordingDesktop mDesktop;
    ActionGuard mGuard{mDesktop};
    ToolbarView mView{mModel, mGuard};
    std::vector<std::string> mKeys;
    Subscription mClicks;
};

TEST_F(Toolbar, EveryButtonOfTheModelHasAPictureANameAndARole) {
    testing::ShowActive(mView);
    for (const ToolbarButton& button : mModel.Buttons()) {
        QToolButton& shown = Button(button.key);
        EXPECT_FALSE(shown.icon().isNull()) << button.key;
        EXPECT_EQ(Spoken(shown).role, QAccessible::Button) << button.key;
        EXPECT_FALSE(Spoken(shown).name.empty()) << button.key;
    }
    EXPECT_EQ(Spoken(Button("CommSettings")).name, "Serial port setup");
    EXPECT_EQ(Spoken(Button("F3")).name, "F3");
}

TEST_F(Toolbar, AClickGoesToTheModelByTheButtonsKey) {
    testing::ShowActive(mView);
    QTest::mouseClick(&Button("UploadA"), Qt::LeftButton);
    QTest::mouseClick(&Button("F8"), Qt::LeftButton);
    EXPECT_THAT(mKeys, ElementsAre("UploadA", "F8"));
}

TEST_F(Toolbar, ADisabledToolbarTakesNoClick) {
    testing::ShowActive(mView);
    mModel.SetEnabled(false);
    QTest::mouseClick(&Button("Clear"), Qt::LeftButton);
    EXPECT_TRUE(mKeys.empty());
    EXPECT_FALSE(Button("Clear").isEnabled());
    mModel.SetEnabled(true);
    QTest::mouseClick(&Button("Clear"), Qt::LeftButton);
    EXPECT_THAT(mKeys, ElementsAre("Clear"));
}

TEST_F(Toolbar, AHiddenToolbarComesBack) {
    testing::ShowActive(mView);
    mModel.SetVisible(false);
    EXPECT_TRUE(mView.isHidden());
    mModel.SetVisible(true);
    EXPECT_FALSE(mView.isHidden());
}

TEST_F(Toolbar, AToggleShowsWhatTheModelHolds) {
    mModel.SetStyle("Copy", ToolbarButtonStyle::Toggle);
    testing::ShowActive(mView);
    QTest::mouseClick(&Button("Copy"), Qt::LeftButton);
    EXPECT_TRUE(mModel.Find("Copy")->pressed);
    EXPECT_TRUE(Button("Copy").isChecked());
    mModel.Press("Copy");
    EXPECT_FALSE(Button("Copy").isChecked());
}

TEST_F(Toolbar, ATipTellsTheMacroAsItIsWritten) {
    mModel.SetToolTip("F2", "Text:\"<CR>PRINT <b>1</b>\xC4\"");
    EXPECT_EQ(Button("F2").accessibleDescription(),
              u"F2 (Ctrl+Shift+F2)\nText:\"<CR>PRINT <b>1</b>\u00C4\""_qs);
    EXPECT_THAT(Button("F2").toolTip().toStdString(),
                ::testing::HasSubstr("&lt;CR&gt;PRINT &lt;b&gt;1"));
    EXPECT_EQ(Button("F3").accessibleDescription(), u"F3 (Ctrl+Shift+F3)"_qs);
}

TEST_F(Toolbar, AnErrorOfTheCommandIsToldInABox) {
    const Subscription failing = mModel.Clicked.Connect(
        [](const std::string&) { throw QNError(1024, "QNComm", "The port is closed."); });
    testing::ShowActive(mView);
    QTest::mouseClick(&Button("Paste"), Qt::LeftButton);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "The port is closed.");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Critical);
}

TEST_F(Toolbar, WhateverElseACommandRaisesGoesToAHandlerThatCanUnwind) {
    std::exception_ptr stopped;
    const ActionGuard guard(mDesktop, [&](std::exception_ptr error) { stopped = error; });
    ToolbarView view(mModel, guard);
    const Subscription failing =
        mModel.Clicked.Connect([](const std::string&) { throw OperationCancelled(); });
    testing::ShowActive(view);
    QTest::mouseClick(view.ButtonOf("Paste"), Qt::LeftButton);
    EXPECT_THROW(std::rethrow_exception(stopped), OperationCancelled);
    EXPECT_TRUE(mDesktop.mBoxes.empty());
}

TEST_F(Toolbar, TheViewMayGoWithinItsOwnClick) {
    auto view = std::make_unique<ToolbarView>(mModel, mGuard);
    testing::ShowActive(*view);
    const Subscription destroying =
        mModel.Clicked.Connect([&](const std::string&) { view.reset(); });
    QAction* action = view->actions().first();
    action->trigger();
    EXPECT_EQ(view, nullptr);
    EXPECT_THAT(mKeys, ElementsAre("CommSettings"));
}

TEST_F(Toolbar, OneTabStopWithArrowKeysBetweenTheButtons) {
    mView.resize(mView.sizeHint()); // a small screen would cut it
    testing::ShowActive(mView);
    Button("CommSettings").setFocus(Qt::TabFocusReason);
    EXPECT_EQ(FocusName(), "Serial port setup");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(FocusName(), "Clear the screen");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
    EXPECT_EQ(FocusName(), "Find the printer");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    EXPECT_EQ(FocusName(), "F8");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(FocusName(), "Serial port setup");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Home);
    EXPECT_EQ(FocusName(), "Serial port setup");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_THAT(mKeys, ElementsAre("CommSettings"));

    int stops = 0;
    for (const ToolbarButton& button : mModel.Buttons())
        stops += Button(button.key).focusPolicy() != Qt::NoFocus ? 1 : 0;
    EXPECT_EQ(stops, 1);
}

TEST_F(Toolbar, ADisabledButtonIsNoStopAndADisabledBarKeepsItsOwn) {
    mView.resize(mView.sizeHint());
    testing::ShowActive(mView);
    const auto isStop = [this](const char* key) {
        return Button(key).focusPolicy() != Qt::NoFocus;
    };
    Button("Clear").setFocus(Qt::TabFocusReason);
    mView.setEnabled(false);
    mView.setEnabled(true);
    EXPECT_TRUE(isStop("Clear"));
    Button("Clear").defaultAction()->setEnabled(false);
    EXPECT_FALSE(isStop("Clear"));
    EXPECT_TRUE(isStop("CommSettings"));
    Button("CommSettings").defaultAction()->setVisible(false);
    EXPECT_TRUE(isStop("Autoconnect"));
}

TEST_F(Toolbar, ButtonsWithoutRoomAreInAMenu) {
    testing::ShowActive(mView);
    mView.resize(200, mView.height());
    auto* more = mView.findChild<QToolButton*>(u"qt_toolbar_ext_button"_qs);
    ASSERT_NE(more, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return more->isVisible(); }));
    EXPECT_FALSE(Button("F8").isVisible());
}

TEST_F(Toolbar, TheMenuOfTheRightButtonHandsInTheItemsIndex) {
    testing::ShowActive(mView);
    std::vector<std::int16_t> picked;
    const PopUpMenu menu{{{1, "Copy"}, {2, "Paste"}}};
    QMenu* shown = ShowMenu(menu, mView, mView.mapToGlobal(QPoint(10, 10)),
                            [&](std::int16_t index) { picked.push_back(index); });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(shown));
    SavePicture(*shown, u"menu"_qs);
    EXPECT_EQ(Spoken(*shown).role, QAccessible::PopupMenu);
    QTest::keyClick(shown, Qt::Key_P);
    EXPECT_THAT(picked, ElementsAre(2));
    shown = ShowMenu(menu, mView, mView.mapToGlobal(QPoint(10, 10)),
                     [&](std::int16_t index) { picked.push_back(index); });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(shown));
    QTest::mouseClick(shown, Qt::LeftButton, {},
                      shown->actionGeometry(shown->actions()[0]).center());
    EXPECT_THAT(picked, ElementsAre(2, 1));
}

/// All pictures in the sizes that desktops use.
QImage Sheet(const ToolbarModel& model, const QPalette& palette) {
    constexpr std::array sizes{16, 20, 24, 32, 48};
    constexpr int cell = 56;
    QStringList names;
    for (const ToolbarButton& button : model.Buttons())
        names << QString::fromStdString(button.key);
    names << u"Close"_qs;
    QImage sheet(cell * static_cast<int>(names.size()), cell * static_cast<int>(sizes.size()),
                 QImage::Format_ARGB32);
    sheet.fill(palette.color(QPalette::Button));
    QPainter painter(&sheet);
    for (int column = 0; column < names.size(); ++column)
        for (std::size_t row = 0; row < sizes.size(); ++row)
            LineIcon(names[column], palette)
                .paint(&painter, QRect(column * cell, static_cast<int>(row) * cell, cell, cell)
                                     .adjusted((cell - sizes[row]) / 2, (cell - sizes[row]) / 2,
                                               -(cell - sizes[row]) / 2, -(cell - sizes[row]) / 2));
    return sheet;
}

/// How many pixels of the picture have exactly this colour.
int Count(const QImage& picture, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, y) == colour ? 1 : 0;
    return count;
}

TEST_F(Toolbar, PicturesTakeThePalettesColoursAtEverySize) {
    SavePicture(Sheet(mModel, QApplication::palette()), u"icons-light"_qs);
    SavePicture(Sheet(mModel, testing::DarkPalette()), u"icons-dark"_qs);
    const QPalette dark = testing::DarkPalette();
    for (const int size : {16, 24, 48}) {
        const QIcon icon = LineIcon(u"Clear"_qs, dark);
        const QImage ordinary = icon.pixmap(size).toImage();
        const QImage disabled = icon.pixmap(size, QIcon::Disabled).toImage();
        EXPECT_GT(Count(ordinary, dark.color(QPalette::Active, QPalette::ButtonText)), 0) << size;
        EXPECT_GT(Count(disabled, dark.color(QPalette::Disabled, QPalette::ButtonText)), 0) << size;
    }
    EXPECT_TRUE(LineIcon(u"NoSuchPicture"_qs, dark).isNull());
}

TEST_F(Toolbar, PicturesFollowAChangeOfThePalette) {
    testing::ShowActive(mView);
    SavePicture(mView, u"toolbar-light"_qs);
    const testing::DarkDesktop desktop;
    SavePicture(mView, u"toolbar-dark"_qs);
    const QColor text = testing::DarkPalette().color(QPalette::ButtonText);
    EXPECT_GT(Count(Button("Clear").icon().pixmap(48).toImage(), text), 0);
}

TEST(Product, ItsPictureIsThereInEverySize) {
    QImage sheet(256, 64, QImage::Format_ARGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    int left = 4;
    for (const int size : {16, 24, 32, 48, 64}) {
        ProductIcon().paint(&painter, QRect(left, 0, size, 64));
        left += size + 8;
    }
    EXPECT_FALSE(ProductIcon().pixmap(64).isNull());
    SavePicture(sheet, u"product-icon"_qs);
}

} // namespace
} // namespace qncomm

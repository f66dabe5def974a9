// Each control model on its widget: the widget shows the model, the user's actions reach it.

#include "qt/Binders.h"
#include "qt/Charset.h"
#include "qt/Mnemonics.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/face/Accessible.h"
#include "testing/face/Windows.h"

#include "common/QNError.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::RecordingDesktop;

class Binders : public ::testing::Test {
  protected:
    /// A widget of the window, with the keys.
    template <class Widget>
    Widget& Add() {
        auto* widget = new Widget;
        mLayout->addWidget(widget);
        return *widget;
    }

    void Show(QWidget& focus) {
        testing::ShowActive(mWindow);
        focus.setFocus();
    }

    RecordingDesktop mDesktop;
    ActionGuard mGuard{mDesktop};
    QWidget mWindow;
    QVBoxLayout* mLayout = new QVBoxLayout(&mWindow);
};

TEST_F(Binders, ALabelFollowsItsCaption) {
    LabelModel model("c:/labels");
    auto& label = Add<QLabel>();
    Bind(model, label);
    EXPECT_EQ(label.text(), u"c:/labels"_qs);
    model.SetCaption("/home/j\xC3\xBCrgen");
    EXPECT_EQ(label.text(), u"/home/j\u00FCrgen"_qs);
    model.SetVisible(false);
    EXPECT_TRUE(label.isHidden());
}

TEST_F(Binders, AButtonIsPressedByMouseKeyAndMnemonic) {
    ButtonModel model("&Send");
    int clicks = 0;
    const Subscription counting = model.Clicked.Connect([&] { ++clicks; });
    auto& button = Add<QPushButton>();
    Bind(model, button, mGuard);
    Show(button);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    QTest::keyClick(&mWindow, Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return clicks == 3; })); // such a key shows the press first
    model.SetEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks, 3);
    EXPECT_FALSE(button.isEnabled());
    model.SetCaption("&Recieve");
    EXPECT_EQ(button.text(), u"&Recieve"_qs);
}

TEST_F(Binders, AButtonsErrorIsToldAndStaysOutOfTheEventLoop) {
    ButtonModel model("&Ok");
    const Subscription failing =
        model.Clicked.Connect([] { throw QNError(91, "form", "Object variable not set"); });
    auto& button = Add<QPushButton>();
    Bind(model, button, mGuard);
    Show(button);
    QTest::mouseClick(&button, Qt::LeftButton);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Object variable not set");
}

TEST_F(Binders, AButtonMayGoWithinItsClick) {
    ButtonModel model("&Ok");
    auto* button = new QPushButton(&mWindow);
    const Subscription closing = model.Clicked.Connect([&] { delete button; });
    Bind(model, *button, mGuard);
    Show(*button);
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_TRUE(mWindow.findChildren<QPushButton*>().isEmpty());
}

TEST_F(Binders, ACheckBoxShowsTheModelEvenWhenItTakesNoInput) {
    CheckBoxModel model("Search all serial ports.");
    auto& box = Add<QCheckBox>();
    Bind(model, box, mGuard);
    Show(box);
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_TRUE(model.Checked());
    model.SetChecked(false);
    EXPECT_FALSE(box.isChecked());
    // A form that takes the choice back at once.
    const Subscription refusing = model.Clicked.Connect([&] { model.SetChecked(false); });
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_FALSE(box.isChecked());
}

TEST_F(Binders, AListIsPickedFromByKeysAlsoTheSameEntryAgain) {
    ListModel model;
    model.SetEntries({{"None", 0}, {"Even", 1}, {"Odd", 2}});
    int clicks = 0;
    const Subscription counting = model.Clicked.Connect([&] { ++clicks; });
    auto& list = Add<QComboBox>();
    Bind(model, list, mGuard);
    EXPECT_EQ(list.currentIndex(), -1);
    model.SetListIndex(1);
    EXPECT_EQ(list.currentText(), u"Even"_qs);
    EXPECT_EQ(clicks, 0);
    Show(list);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(model.ListIndex(), 2);
    QTest::keyClick(&list, Qt::Key_E);
    EXPECT_EQ(model.ListIndex(), 1);
    list.showPopup();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(model.ListIndex(), 1);
    EXPECT_EQ(clicks, 3);
    model.SetEntries({{"8 bits", 8}});
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(list.currentIndex(), -1);
}

TEST_F(Binders, ATextIsTypedSelectedAndRewritten) {
    TextBoxModel model;
    model.SetText("one two");
    auto& edit = Add<QLineEdit>();
    Bind(model, edit, mGuard);
    Show(edit);
    EXPECT_EQ(edit.text(), u"one two"_qs);
    edit.end(false);
    QSignalSpy moves(&edit, &QLineEdit::cursorPositionChanged);
    QTest::keyClicks(&edit, u" three"_qs);
    EXPECT_EQ(moves.count(), 6); // once a key: a screen reader speaks each
    EXPECT_EQ(model.Text(), "one two three");
    EXPECT_EQ(model.SelStart(), 13U);
    QTest::keyClick(&edit, Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(model.SelStart(), 8U);
    EXPECT_EQ(model.SelLength(), 5U);
    model.InsertAtCursor("<CR>");
    EXPECT_EQ(edit.text(), u"one two <CR>"_qs);
    EXPECT_EQ(edit.cursorPosition(), 12);
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model.Text(), "one two three");
    model.Select(0, 3);
    EXPECT_EQ(edit.selectedText(), u"one"_qs);
}

TEST_F(Binders, TextOfTheLineIsOneByteACharacterAndTextOfThisMachineUtf8) {
    TextBoxModel model;
    model.SetKind(TextKind::Line);
    model.SetText("\x80\xE4");
    auto& edit = Add<QLineEdit>();
    Bind(model, edit, mGuard);
    Show(edit);
    EXPECT_EQ(edit.text(), u"\u20AC\u00E4"_qs);
    edit.setCursorPosition(1);
    EXPECT_EQ(model.SelStart(), 1U);
    QTest::sendKeyEvent(QTest::Click, &edit, Qt::Key_Odiaeresis, u"\u00F6"_qs, Qt::NoModifier);
    EXPECT_EQ(model.Text(), "\x80\xF6\xE4");
    edit.insert(u"\u4E2D"_qs);
    EXPECT_EQ(model.Text(), "\x80\xF6?\xE4");
    EXPECT_EQ(edit.text(), u"\u20AC\u00F6?\u00E4"_qs);

    model.SetKind(TextKind::Host);
    model.SetText("/tmp/\xC3\xA4-label");
    EXPECT_EQ(edit.text(), u"/tmp/\u00E4-label"_qs);
    edit.setCursorPosition(6);
    EXPECT_EQ(model.SelStart(), 7U);
    model.Select(5, 2);
    EXPECT_EQ(edit.selectedText(), u"\u00E4"_qs);
}

TEST_F(Binders, ATextLongerThanAWidgetsOwnLimitIsShownWhole) {
    TextBoxModel model;
    model.SetText(std::string(1'000'000, 'x'));
    auto& edit = Add<QLineEdit>();
    Bind(model, edit, mGuard);
    EXPECT_EQ(edit.text().size(), 1'000'000);
}

TEST_F(Binders, ATabIsTurnedToByKey) {
    TabStripModel model({"F1", "F2", "F3"});
    auto& strip = Add<QTabBar>();
    Bind(model, strip, mGuard);
    EXPECT_EQ(strip.count(), 3);
    std::size_t former = 9;
    const Subscription turning = model.Clicked.Connect([&](std::size_t tab) { former = tab; });
    Show(strip);
    QTest::keyClick(&strip, Qt::Key_Right);
    EXPECT_EQ(model.Tab(), 1U);
    EXPECT_EQ(former, 0U);
    model.SetEnabled(false);
    strip.setCurrentIndex(2);
    EXPECT_EQ(strip.currentIndex(), 1);
    model.SetCaption(0, "F9");
    EXPECT_EQ(strip.tabText(0), u"F9"_qs);
}

TEST_F(Binders, AProgressBarHasTheModelsRange) {
    ProgressBarModel model(0, 30);
    auto& bar = Add<QProgressBar>();
    Bind(model, bar);
    EXPECT_EQ(bar.maximum(), 30);
    model.SetValue(7);
    EXPECT_EQ(bar.value(), 7);
    EXPECT_EQ(testing::Spoken(bar).role, QAccessible::ProgressBar);
}

TEST_F(Binders, EveryCaptionGetsAKeyOfItsOwn) {
    LabelModel caption("Port:");
    CheckBoxModel box("Print");
    ButtonModel button("&Ok");
    auto& label = Add<QLabel>();
    auto& field = Add<QLineEdit>();
    auto& check = Add<QCheckBox>();
    auto& ok = Add<QPushButton>();
    auto& strip = Add<QTabBar>();
    strip.addTab(u"F1"_qs);
    strip.addTab(u"F2"_qs);
    label.setBuddy(&field);
    Bind(caption, label);
    Bind(box, check, mGuard);
    Bind(button, ok, mGuard);
    const QString taken = GiveMnemonics(mWindow, u"I"_qs);
    EXPECT_EQ(label.text(), u"&Port:"_qs);
    EXPECT_EQ(check.text(), u"P&rint"_qs);
    EXPECT_EQ(ok.text(), u"&Ok"_qs);
    EXPECT_EQ(strip.tabText(1), u"F&2"_qs);
    for (const QChar key : u"IOPR12"_qs)
        EXPECT_TRUE(taken.contains(key)) << key.toLatin1();
    Show(ok);
    QTest::keyClick(&mWindow, Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(field.hasFocus());
    caption.SetCaption("Printer port:");
    EXPECT_EQ(label.text(), u"&Printer port:"_qs);
}

TEST(Charset, EveryByteOfTheLineSurvivesBeingShownAndTypedAgain) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(ToLine(FromLine(all)), all);
    EXPECT_EQ(FromLine("\x80"), u"\u20AC"_qs);
    EXPECT_EQ(ToLine(u"a\u4E2D\U0001F5A8z"_qs), "a??z");
}

TEST(Charset, ATextOfUnknownOriginIsUtf8WhenItCanBe) {
    EXPECT_EQ(FromEither("Stra\xC3\x9F"
                         "e"),
              u"Stra\u00DFe"_qs);
    EXPECT_EQ(FromEither("Stra\xDF"
                         "e"),
              u"Stra\u00DFe"_qs);
    EXPECT_EQ(FromEither("cut \xC3"), u"cut \u00C3"_qs);
}

} // namespace
} // namespace qncomm

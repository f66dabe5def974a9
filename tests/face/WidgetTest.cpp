// The control as a person meets it: real keys and clicks on one side, the virtual printer's bytes
// and the grid on the other.

#include "link/LiveState.h"
#include "qt/Charset.h"
#include "qt/TitleBar.h"
#include "qt/ToolbarView.h"
#include "testing/face/ControlRig.h"
#include "testing/face/Pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Widget, ACommandTypedShowsItsReply) {
    ControlRig rig;
    rig.Show();
    rig.Type(QStringLiteral("PRINT 6*7"));
    rig.Press(Qt::Key_Return);
    EXPECT_TRUE(rig.WaitForScreen("42"));
    EXPECT_THAT(rig.trace.mSent, HasSubstr("PRINT 6*7\r"));
    SavePicture(rig.window, QStringLiteral("control-session"));
}

TEST(Widget, CtrlCAndBreakEndAProgramThatRuns) {
    ControlRig rig;
    rig.Show();
    const QSignalSpy changes(&rig.Widget(), &QNCommWidget::liveStateEvent);
    rig.Type(QStringLiteral("10 GOTO 10"));
    rig.Press(Qt::Key_Return);
    const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_C, Qt::ControlModifier},
        {Qt::Key_Pause, Qt::ControlModifier},
        {Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier}};
    for (const auto& [key, held] : keys) {
        rig.Widget().clear();
        rig.Type(QStringLiteral("RUN"));
        rig.Press(Qt::Key_Return);
        EXPECT_TRUE(rig.WaitForScreen("RUN"));
        EXPECT_TRUE(
            WaitUntil([&] { return rig.Widget().control().PrinterActivity() == PrinterRunning; }));
        rig.Press(key, held);
        EXPECT_TRUE(rig.WaitForScreen("Break")) << key;
        EXPECT_TRUE(
            WaitUntil([&] { return rig.Widget().control().PrinterActivity() == PrinterAtPrompt; }));
    }
    EXPECT_GE(changes.count(), 6);
}

TEST(Widget, StoppingAProgramProvesThePrompt) {
    ControlRig rig;
    rig.Show();
    rig.Type(QStringLiteral("10 GOTO 10"));
    rig.Press(Qt::Key_Return);
    rig.Type(QStringLiteral("RUN"));
    rig.Press(Qt::Key_Return);
    EXPECT_TRUE(rig.WaitForScreen("RUN"));
    rig.Widget().stopProgram();
    EXPECT_EQ(rig.Widget().control().PrinterActivity(), PrinterAtPrompt);
}

TEST(Widget, TheSessionIsReadableOnADarkDesktop) {
    const DarkDesktop dark;
    ControlRig rig;
    rig.Widget().setBackColor(static_cast<int>(0x80000005));
    rig.Widget().setForeColor(static_cast<int>(0x80000008));
    rig.Show();
    rig.Type(QStringLiteral("PRINT \"dark\""));
    rig.Press(Qt::Key_Return);
    EXPECT_TRUE(rig.WaitForScreen("\r\ndark"));
    SavePicture(rig.window, QStringLiteral("control-dark"));
}

TEST(Widget, ArrowKeysSendNothingAndDeleteDoesNeither) {
    ControlRig rig;
    rig.Show();
    for (const Qt::Key key :
         {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down, Qt::Key_Delete})
        rig.Press(key);
    rig.Type(QStringLiteral("x"));
    EXPECT_TRUE(WaitUntil([&] { return !rig.trace.mSent.empty(); }));
    EXPECT_EQ(rig.trace.mSent, "x");
}

TEST(Widget, InsertCopiesWithCtrlAndPastesWithShift) {
    ControlRig rig;
    rig.Show();
    rig.Receive("what is shown   \r\n");
    rig.Press(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_TRUE(
        QGuiApplication::clipboard()->text().startsWith(QStringLiteral("what is shown\n"))
        || QGuiApplication::clipboard()->text().startsWith(QStringLiteral("what is shown\r\n")));
    QGuiApplication::clipboard()->setText(QStringLiteral("REM pasted"));
    rig.Press(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([&] { return rig.trace.mSent == "REM pasted"; })) << rig.trace.mSent;
}

TEST(Widget, AFunctionKeysMacroRunsByItsChordAndByItsButton) {
    ControlRig rig;
    rig.settings->WriteValue("FunctionKeys", "F2", "0;PRINT 1+1<CR>");
    rig.Show();
    rig.Press(Qt::Key_F2, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([&] { return rig.trace.mSent == "PRINT 1+1\r"; })) << rig.trace.mSent;
    auto* toolbar = rig.Widget().findChild<ToolbarView*>();
    QTest::mouseClick(toolbar->ButtonOf("F2"), Qt::LeftButton);
    EXPECT_TRUE(WaitUntil([&] { return rig.trace.mSent == "PRINT 1+1\rPRINT 1+1\r"; }));
}

TEST(Widget, TheRightButtonShowsTheMenuWhichCopies) {
    ControlRig rig;
    rig.Show();
    rig.Receive("copied by the menu");
    auto* area = qobject_cast<QAbstractScrollArea*>(&rig.View());
    QTest::mouseClick(area->viewport(), Qt::RightButton);
    ASSERT_TRUE(WaitUntil([] { return QApplication::activePopupWidget() != nullptr; }));
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QStringList captions;
    for (const QAction* action : menu->actions())
        captions << action->text().remove(QLatin1Char('&'));
    EXPECT_THAT(captions, ElementsAre(QStringLiteral("Copy"), QStringLiteral("Paste")));
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([] {
        return QGuiApplication::clipboard()->text().contains(QStringLiteral("copied by the menu"));
    }));
}

// -- Events

TEST(WidgetEvents, TheHostSeesThePortAndMayChangeAMessageAndStopAnOperation) {
    ControlRig rig;
    std::vector<bool> states;
    QObject::connect(&rig.Widget(), &QNCommWidget::portStateEvent, &rig.window,
                     [&](bool& busy) { states.push_back(busy); });
    rig.Show();
    EXPECT_THAT(states, ElementsAre(true));
    int messages = 0;
    QObject::connect(&rig.Widget(), &QNCommWidget::statusEvent, &rig.window,
                     [&](QString& text, int, bool& cancel) {
                         ++messages;
                         text = QStringLiteral("changed");
                         cancel = true;
                     });
    rig.Widget().connectPrinter();
    EXPECT_EQ(messages, 1); // stopped by the first
}

TEST(WidgetEvents, AnErrorIsToldByASignal) {
    ControlRig rig;
    rig.Show();
    QSignalSpy errors(&rig.Widget(), &QNCommWidget::error);
    rig.Widget().run([](QNComm& control) { control.Files("nowhere:"); });
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.front().at(0).toInt(), 1018);
    EXPECT_EQ(errors.front().at(1).toString(), QStringLiteral("QNComm:Files"));
}

TEST(WidgetEvents, TheWidgetMayBeDeletedFromItsOwnStatusEvent) {
    ControlRig rig;
    rig.Show();
    QObject::connect(&rig.Widget(), &QNCommWidget::statusEvent, &rig.window,
                     [&] { rig.DeleteWidget(); });
    rig.Widget().connectPrinter();
    EXPECT_FALSE(rig.HasWidget());
    QTest::qWait(50); // what was on the stack has gone by then
}

TEST(WidgetEvents, TheWidgetMayBeDeletedWhenThePortOpens) {
    ControlRig rig;
    QObject::connect(&rig.Widget(), &QNCommWidget::portStateEvent, &rig.window,
                     [&] { rig.DeleteWidget(); });
    rig.window.show();
    EXPECT_TRUE(WaitUntil([&] { return !rig.HasWidget(); }));
    QTest::qWait(50);
}

TEST(WidgetEvents, TheWidgetMayBeDeletedByAButtonOfItsOwnToolbar) {
    ControlRig rig;
    rig.Show();
    QObject::connect(&rig.Widget(), &QNCommWidget::statusEvent, &rig.window,
                     [&] { rig.DeleteWidget(); });
    auto* toolbar = rig.Widget().findChild<ToolbarView*>();
    QTest::mouseClick(toolbar->ButtonOf("Autoconnect"), Qt::LeftButton);
    EXPECT_FALSE(rig.HasWidget());
    QTest::qWait(50);
}

// -- The port

TEST(WidgetPort, TheCloseButtonHidesTheControlAndReleasesThePort) {
    ControlRig rig;
    rig.Show();
    auto* title = rig.Widget().findChild<TitleBar*>();
    QTest::mouseClick(title->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_FALSE(rig.Widget().isVisible());
    EXPECT_FALSE(rig.Widget().assembly().Serial().PortOpen());
    rig.Widget().show();
    EXPECT_TRUE(WaitUntil([&] { return rig.Widget().assembly().Serial().PortOpen(); }));
}

TEST(WidgetPort, APortThatIsLostWhileShownIsToldAndCanBeUsedAgain) {
    ControlRig rig(QStringLiteral("sim:R7G?baud=57600&format=n,8,1&cut=40"));
    std::vector<bool> states;
    QObject::connect(&rig.Widget(), &QNCommWidget::portStateEvent, &rig.window,
                     [&](bool& busy) { states.push_back(busy); });
    rig.Show();
    rig.Type(QStringLiteral("PRINT \"as much as the line takes until it is cut\""));
    EXPECT_TRUE(WaitUntil([&] { return states == std::vector<bool>{true, false}; }));
    EXPECT_FALSE(rig.Widget().assembly().Serial().PortOpen());
    rig.Press(Qt::Key_A); // goes nowhere, and harms nothing
    EXPECT_EQ(rig.Widget().setPortAddress(QStringLiteral("sim:R7G?baud=57600&format=n,8,1")),
              QString());
    rig.Widget().hide();
    rig.Widget().show();
    EXPECT_TRUE(WaitUntil([&] { return rig.Widget().assembly().Serial().PortOpen(); }));
    rig.View().setFocus();
    rig.Type(QStringLiteral("PRINT 2"));
    rig.Press(Qt::Key_Return);
    EXPECT_TRUE(rig.WaitForScreen("\r\n2"));
}

TEST(WidgetPort, ClosingTheWindowEndsAnOperationAndClosesThePort) {
    ControlRig rig(QStringLiteral("sim:R7G?no-echo=on&baud=300"));
    rig.Show();
    bool closed = false;
    QTimer::singleShot(100, &rig.window, [&] { closed = rig.window.close(); });
    rig.Widget().connectPrinter(); // a search that would take many seconds
    EXPECT_TRUE(closed);
    EXPECT_FALSE(rig.Widget().isBusy());
    EXPECT_TRUE(WaitUntil([&] { return !rig.Widget().assembly().Serial().PortOpen(); }));
}

TEST(WidgetPort, AnAddressThatIsNoneSaysWhy) {
    QNCommWidget widget;
    EXPECT_THAT(widget.setPortAddress(QStringLiteral("sim:NONE")).toStdString(), Not(""));
    EXPECT_EQ(widget.setPortAddress(QStringLiteral("tcp://localhost:4000")), QString());
}

} // namespace
} // namespace qncomm::testing

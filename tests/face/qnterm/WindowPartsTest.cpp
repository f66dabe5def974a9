// The window's docks beside the terminal: reached by keys, named, legible, and of use before there
// is a printer.

#include "WindowFixture.h"

#include "CodeView.h"
#include "EmptyHint.h"
#include "ModuleBrowser.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"

#include <gmock/gmock.h>

#include <QTabBar>
#include <QToolButton>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using qncomm::testing::CutCaptions;
using qncomm::testing::FocusName;
using qncomm::testing::FocusStops;
using qncomm::testing::SavePicture;
using qncomm::testing::StopsOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(WindowTest, WhatCanHaveTheKeysHasANameAndARole) {
    Open("sim:R7G");
    AwaitPrinter();
    for (const char* dock : {"devices", "setup", "modules", "labels", "line"}) {
        ShowDock(dock);
        const FocusStops stops = StopsOf(*mWindow);
        EXPECT_THAT(stops.nameless, IsEmpty()) << dock;
        EXPECT_GT(stops.count, 2) << dock;
    }
}

TEST_F(WindowTest, NoCaptionIsCut) {
    Open("sim:R7G");
    AwaitPrinter();
    for (const char* dock : {"devices", "setup", "modules", "labels", "line"}) {
        ShowDock(dock);
        EXPECT_THAT(CutCaptions(*mWindow), IsEmpty()) << dock;
        SavePicture(*mWindow, QStringLiteral("qnterm-%1-dock").arg(dock));
    }
    mWindow->resize(mWindow->minimumSizeHint());
    Settle();
    for (const QTabBar* tabs : mWindow->findChildren<QTabBar*>())
        EXPECT_GE(tabs->width(), tabs->sizeHint().width()) << "tabs of the docks";
    SavePicture(*mWindow, "qnterm-smallest");
}

TEST_F(WindowTest, EveryPartIsReachedByItsKeysAndTakesThem) {
    Open("sim:R7G");
    AwaitPrinter();
    const struct {
        const char* action;
        const char* name;
    } parts[] = {{"Devices", "Devices of the printer"},
                 {"Setup", "Search the setup"},
                 {"Modules", "Text of the module"},
                 {"Terminal", "Terminal"}};
    for (const auto& part : parts) {
        Trigger(part.action);
        Settle();
        EXPECT_EQ(FocusName(), part.name);
    }
}

TEST_F(WindowTest, TheTabKeyGoesThroughAPartWithItsButtons) {
    Open("sim:R7G");
    AwaitPrinter();
    Trigger("Setup");
    Settle();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(FocusName(), "Refresh");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    EXPECT_EQ(FocusName(), "Load\u2026");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(FocusName(), "Search the setup");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(FocusName(), "Setup of the printer");
}

TEST_F(WindowTest, WithoutAPortNothingIsSentAnywhereAndEachPartSaysWhatToDo) {
    Open({});
    mWindow->findChild<AddressDialog*>()->reject();
    Settle();
    Find<ModuleBrowser>().OpenFile(
        QString::fromStdString(mFolder.Write("PRICES.PRG", "PRINT 1\r\n")));
    ShowDock("modules");
    for (const auto* button : Find<ModuleBrowser>().findChildren<QToolButton*>())
        if (button->text() == "Upload" || button->text() == "Link") {
            EXPECT_FALSE(button->isEnabled()) << button->text().toStdString();
        }
    Find<CodeView>().setFocus();
    QTest::keyClick(&Find<CodeView>(), Qt::Key_F5);
    Settle();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a failure of what is not offered";
    EXPECT_EQ(mTrace.mSent, "");
    EXPECT_FALSE(PortOpen());
    for (const char* dock : {"devices", "setup"}) {
        ShowDock(dock);
        EXPECT_THAT(
            mWindow->findChild<QDockWidget*>(dock)->findChild<EmptyHint*>()->text().toStdString(),
            HasSubstr("Choose a printer"));
    }
    ShowDock("labels");
    SavePicture(*mWindow, "qnterm-without-port");
}

} // namespace
} // namespace qncomm::testing

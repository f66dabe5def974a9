// The whole window with a virtual printer behind it, in real time, as a person uses it.

#include "WindowFixture.h"

#include "CodeView.h"
#include "FileView.h"
#include "LineView.h"
#include "ModuleBrowser.h"
#include "Operations.h"
#include "PreviewPane.h"
#include "SetupBrowser.h"
#include "control/QNComm.h"
#include "link/clsDataLink.h"
#include "testing/face/Pictures.h"
#include "testing/line/FloodingServer.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QInputDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using qncomm::testing::DarkDesktop;
using qncomm::testing::SavePicture;
using ::testing::HasSubstr;
using ::testing::Not;

TEST_F(WindowTest, TheFirstStartOffersTheVirtualPrinterAndEnterConnectsIt) {
    Open({});
    auto* chooser = mWindow->findChild<AddressDialog*>();
    ASSERT_NE(chooser, nullptr);
    ASSERT_TRUE(chooser->isVisible());
    SavePicture(*chooser, "qnterm-chooser");
    SavePicture(*mWindow, "qnterm-welcome");
    EXPECT_FALSE(PortOpen()) << "a port was opened that nobody chose";
    QTest::keyClick(chooser->findChild<QLineEdit*>(), Qt::Key_Return);
    AwaitPrinter();
    EXPECT_THAT(Status(), HasSubstr("R7G on "));
    CloseWindow();
    EXPECT_THAT(mFolder.Read("settings.ini"), HasSubstr("sim:R7G"));

    Open({}); // the next start asks nothing
    EXPECT_EQ(mWindow->findChild<AddressDialog*>(), nullptr);
    AwaitPrinter();
}

TEST_F(WindowTest, WhatIsTypedReachesThePrinterAndItsAnswerIsShown) {
    Open("sim:R7G");
    AwaitPrinter();
    Type("PRINT 6*7\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.ends_with("42\r\nOk\r\n"); }))
        << mTrace.mReceived;
    EXPECT_THAT(mTrace.mSent, HasSubstr("PRINT 6*7\r"));
    Type("FILES \"c:\"\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.ends_with("Ok\r\n"); }));
    QTest::qWait(100);
    SavePicture(*mWindow, "qnterm-session");
    CloseWindow();
}

TEST_F(WindowTest, AProgramThatRunsIsShownAndEndsByTheMenu) {
    Open("sim:R7G");
    AwaitPrinter();
    Type("10 GOTO 10\nRUN\n");
    EXPECT_TRUE(Eventually([&] { return Status().find(", running") != std::string::npos; }))
        << Status();
    QTest::qWait(100);
    SavePicture(*mWindow, "qnterm-running");
    Trigger("Stop");
    EXPECT_THAT(Status(), HasSubstr("The program was ended by Ctrl-C."));
    EXPECT_THAT(Status(), Not(HasSubstr(", running")));
    for (const char* action : {"Send Ctrl-C", "Send Break"}) {
        Type("RUN\n");
        EXPECT_TRUE(Eventually([&] { return Status().find(", running") != std::string::npos; }));
        Trigger(action);
        EXPECT_TRUE(Eventually([&] { return Status().find(", running") == std::string::npos; }))
            << action << ": " << Status();
    }
}

TEST_F(WindowTest, TheLineIsWatchedAtGivenSettingsAndNothingIsSent) {
    Open("sim:R7G?baud=4800");
    AwaitPrinter();
    Type("10 PRINT \"still here\":GOTO 10\nRUN\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.find("still") != std::string::npos; }));
    const std::string sent = mTrace.mSent;
    Trigger("Watch the Line…");
    auto* dialog = mWindow->findChild<QInputDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->textValue().startsWith("4800,")) << dialog->textValue().toStdString();
    dialog->accept();
    auto* text = Find<LineView>().findChild<QPlainTextEdit*>();
    EXPECT_TRUE(Eventually([&] {
        return text->toPlainText().contains(
            QRegularExpression(R"(\d\d:\d\d:\d\d\.\d{3}  <  still here<CR><LF>)"));
    })) << text->toPlainText().right(400).toStdString();
    SavePicture(*mWindow, "qnterm-watch");
    EXPECT_EQ(mTrace.mSent, sent);
    Trigger("Send Ctrl-C");
    EXPECT_TRUE(Eventually([&] { return text->toPlainText().contains("  >  <ETX>"); }));
}

TEST_F(WindowTest, AnotherPortTakesThePrintersNameOffTheWindow) {
    Open("sim:R7G");
    AwaitPrinter();
    Control().control().Link().SetBaudrate("4800");
    EXPECT_FALSE(mWindow->windowTitle().startsWith("R7G")) << "another one may answer now";
    EXPECT_THAT(Status(), Not(HasSubstr("R7G on ")));
}

TEST_F(WindowTest, RateAndFormatAreShownAsTheyAreFoundAndAsTheyChange) {
    Open("sim:R7G?baud=57600&format=n,7,1");
    AwaitPrinter();
    EXPECT_THAT(Status(), HasSubstr(" at 57600,N,7,1"));
    clsDataLink& link = Control().control().Link();
    link.SetParity("E");
    EXPECT_THAT(Status(), HasSubstr(" at 57600,E,7,1"));
    link.SetDatabits("8");
    link.SetStopbits("2");
    EXPECT_THAT(Status(), HasSubstr(" at 57600,E,8,2"));
}

TEST_F(WindowTest, TheSetupIsReadIntoItsDock) {
    Open("sim:R7G");
    AwaitPrinter();
    ShowDock("setup");
    Find<SetupBrowser>().Read();
    EXPECT_GT(Find<SetupBrowser>().findChild<QTreeView*>()->model()->rowCount(), 2);
    Settle();
    SavePicture(*mWindow, "qnterm-setup");
}

TEST_F(WindowTest, AModulesErrorsStandBelowItsText) {
    Open("sim:R7G");
    AwaitPrinter();
    ShowDock("modules");
    Find<ModuleBrowser>().OpenFile(QString::fromStdString(mFolder.Write(
        "PRICES.PRG", "PRINT \"Prices\"\r\nFOR I=1 TO 3\r\nPRONT I\r\nNEXT I\r\nPRINT )\r\n")));
    Find<ModuleBrowser>().Upload();
    Settle();
    EXPECT_EQ(Find<CodeView>().MarkedLine(), 3);
    SavePicture(*mWindow, "qnterm-module-errors");
}

TEST_F(WindowTest, APrintedLabelIsShown) {
    Open("sim:R7G");
    AwaitPrinter();
    ShowDock("labels");
    SavePicture(*mWindow, "qnterm-labels-empty");
    Type("PP 40,200:FT \"SW120BSN.1\":PT \"QNComm\":PP 40,120:FT \"SW050RSN.1\":"
         "PT \"Printed without a printer\":PF\n");
    EXPECT_TRUE(Eventually([&] { return Find<LabelView>().Count() == 1; }));
    Type("PP 20,90:PX 220,780,6:PP 60,180:FT \"SW080BSN.1\":PT \"Second\":PF\n");
    EXPECT_TRUE(Eventually([&] { return Find<LabelView>().Count() == 2; }));
    Settle();
    SavePicture(*mWindow, "qnterm-labels");
}

TEST_F(WindowTest, TheDarkDesktopIsFollowed) {
    const DarkDesktop dark;
    Open("sim:R7G");
    AwaitPrinter();
    Type("PRINT 1\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.ends_with("1\r\nOk\r\n"); }));
    QTest::qWait(100);
    SavePicture(*mWindow, "qnterm-dark");
}

/// A printer beside the program that can be unplugged and plugged in again.
class Plug {
  public:
    explicit Plug(QString path) : mPath(std::move(path)) { In(); }
    ~Plug() { Out(); }
    Plug(const Plug&) = delete;
    Plug& operator=(const Plug&) = delete;

    void In() {
        mPrinter.start(QN_PROGRAMS "/qnsim", {"--link", mPath});
        EXPECT_TRUE(mPrinter.waitForReadyRead(Patience));
    }
    void Out() {
        mPrinter.kill();
        mPrinter.waitForFinished(Patience);
    }

  private:
    QString mPath;
    QProcess mPrinter;
};

TEST_F(WindowTest, APortThatIsUnpluggedIsToldAndComesBack) {
    const QString path = QString::fromStdString(mFolder.File("printer"));
    Plug plug(path);
    Open(path);
    AwaitPrinter();
    plug.Out();
    EXPECT_TRUE(Eventually([&] { return Status().find(" lost") != std::string::npos; }));
    SavePicture(*mWindow, "qnterm-port-lost");
    plug.In();
    EXPECT_TRUE(Eventually([&] { return Status().find(" lost") == std::string::npos; }));
    EXPECT_TRUE(PortOpen());
    Type("PRINT 6*7\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.ends_with("42\r\nOk\r\n"); }));
}

TEST_F(WindowTest, CancelEndsASearch) {
    QTimer press;
    bool pressed = false;
    QObject::connect(&press, &QTimer::timeout, [&] {
        auto* cancel = mWindow->statusBar()->findChild<QToolButton*>();
        if (pressed || !cancel->isVisible() || mTrace.mSent.empty()) return;
        pressed = true;
        SavePicture(*mWindow, "qnterm-searching");
        cancel->click();
    });
    press.start(20);
    Open("sim:R7G?baud=300&format=s,7,1"); // no search finds this one
    EXPECT_TRUE(Eventually([&] { return pressed && !IsBusy(); }));
    EXPECT_THAT(Status(), HasSubstr("Connect: cancelled"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr)
        << "what was cancelled was told as failed";
}

TEST_F(WindowTest, ClosingDuringASearchEndsItAndClosesThePort) {
    QTimer close;
    QObject::connect(&close, &QTimer::timeout, [&] {
        if (mTrace.mSent.empty() || !IsBusy()) return;
        close.stop();
        mWindow->close();
    });
    close.start(20);
    Open("sim:R7G?baud=300&format=s,7,1"); // no search finds this one
    EXPECT_TRUE(Eventually([&] { return !mWindow->isVisible() && !IsBusy() && !PortOpen(); }));
}

TEST_F(WindowTest, ClosingDuringATransferEndsItAndClosesThePort) {
    Open("sim:R7G");
    AwaitPrinter();
    const std::string path = mFolder.Write("LONG.DAT", std::string(3'900'000, 'x'));
    QTimer close;
    QObject::connect(&close, &QTimer::timeout, [&] {
        if (Status().find("Uploading") != std::string::npos) mWindow->close();
    });
    close.start(1);
    const DeviceListing device{.name = "tmp:",
                               .kind = DeviceKind::Files,
                               .files = {},
                               .used = {},
                               .free = {},
                               .generation = Control().control().Generation()};
    Find<DeviceBrowser>().Actions().SendFiles(device, {QString::fromStdString(path)});
    EXPECT_TRUE(Eventually([&] { return !mWindow->isVisible() && !IsBusy() && !PortOpen(); }));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(WindowTest, ClosingDuringARestartEndsTheWaitAndClosesThePort) {
    Open("sim:R7G?boot-ms=600000");
    AwaitPrinter();
    QTimer::singleShot(500, qApp, [this] { mWindow->close(); });
    EXPECT_FALSE(mWindow->findChild<Operations*>()->Run(
        "Reboot", [](qncomm::QNComm& control) { control.Reboot(); }));
    EXPECT_TRUE(Eventually([&] { return !mWindow->isVisible() && !IsBusy() && !PortOpen(); }));
    for (const QWidget* window : QApplication::topLevelWidgets())
        EXPECT_FALSE(window->isVisible()) << window->windowTitle().toStdString();
}

TEST_F(WindowTest, ThePrintersImagesAreShownAsTheyWereSent) {
    const DarkDesktop dark;
    Open("sim:R7G");
    AwaitPrinter();
    std::string picture = "\x0A\x05\x01\x01";
    picture.resize(128, '\0');
    picture[8] = 63; // 64 by 64 dots
    picture[10] = 63;
    picture[16] = picture[17] = picture[18] = '\0';
    picture[19] = picture[20] = picture[21] = '\xFF';
    picture[65] = 1;
    picture[66] = 8;
    for (int row = 0; row < 64; ++row)
        for (int byte = 0; byte < 8; ++byte)
            picture += (row / 8 + byte) % 2 == 0 ? std::string("\xC1\xFF") : std::string(1, '\0');
    const std::string path = mFolder.Write("CHECKER.PCX", picture);
    auto* devices = Find<DeviceBrowser>().findChildren<QTableView*>().front();
    for (auto* table : Find<DeviceBrowser>().findChildren<QTableView*>())
        if (table->accessibleName().startsWith("Devices")) devices = table;
    devices->selectRow(devices->model()->rowCount() - 1);
    const DeviceListing images{.name = "images:",
                               .kind = DeviceKind::Images,
                               .files = {},
                               .used = {},
                               .free = {},
                               .generation = Control().control().Generation()};
    Find<DeviceBrowser>().Actions().SendFiles(images, {QString::fromStdString(path)});
    Find<FileView>().selectRow(0);
    Settle();
    EXPECT_EQ(Find<PreviewPane>().Picture().size(), QSize(64, 64));
    SavePicture(*mWindow, "qnterm-images-dark");
}

// -- A device server that says nothing

/// The window on such a server: what it asks at its start waits for it.
class WindowOnSilentServer : public WindowTest {
  protected:
    ~WindowOnSilentServer() override { mWindow.reset(); } // the server ends after its guest

    /// Opens the window and acts as soon as it waits, from its own events: the opening returns when
    /// the waiting has ended.
    void OpenAndThen(const std::function<void()>& act) {
        QTimer busy;
        QObject::connect(&busy, &QTimer::timeout, &busy, [&] {
            if (!mWindow || !IsBusy()) return;
            busy.stop();
            mSince.start();
            act();
        });
        busy.start(100);
        Open("rfc2217://127.0.0.1:" + QString::fromStdString(mServer.Service()));
        EXPECT_TRUE(Eventually([&] { return mSince.isValid() && !IsBusy(); }));
        EXPECT_LT(mSince.elapsed(), 2000) << "one look at the server takes 3 s";
        EXPECT_FALSE(PortOpen());
    }

    const FloodingServer mServer{""};
    QElapsedTimer mSince;
};

TEST_F(WindowOnSilentServer, ACancelIsObeyed) {
    OpenAndThen([this] { Find<Operations>().Cancel(); });
    EXPECT_THAT(Status(), HasSubstr("ancelled"));
}

TEST_F(WindowOnSilentServer, TheWindowCloses) {
    bool closed = false;
    OpenAndThen([&] {
        QObject::connect(mWindow.get(), &MainWindow::Closed, mWindow.get(), [&] { closed = true; });
        mWindow->close();
    });
    EXPECT_TRUE(Eventually([&] { return closed && !mWindow->isVisible(); }));
}

} // namespace
} // namespace qncomm::testing

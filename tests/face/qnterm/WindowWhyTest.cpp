// "Why?": the diagnosis of a line in the window, which goes on meanwhile and changes nothing.

#include "WindowFixture.h"

#include "Operations.h"
#include "WhyDialog.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>

#include <fcntl.h>
#include <sys/file.h>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class WindowWhyTest : public WindowTest {
  protected:
    QToolButton* WhyButton() {
        for (auto* button : mWindow->statusBar()->findChildren<QToolButton*>())
            if (button->accessibleName().startsWith("Why")) return button;
        return nullptr;
    }
    bool OffersWhy() { return WhyButton()->isVisible(); }

    WhyDialog* Shown() {
        auto* dialog = mWindow->findChild<WhyDialog*>();
        return dialog != nullptr && dialog->isVisible() ? dialog : nullptr;
    }
    std::string Verdict() {
        for (const QLabel* label : Shown()->findChildren<QLabel*>())
            if (label->accessibleName() == "Verdict") return label->text().toStdString();
        return {};
    }
    std::string Cure() { return Shown()->findChild<QLineEdit*>()->text().toStdString(); }
    static void Press(const QWidget& dialog, const QString& caption) {
        for (auto* button : dialog.findChildren<QAbstractButton*>())
            if (button->text().remove('&') == caption) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        ADD_FAILURE() << "no button " << caption.toStdString();
    }
};

TEST_F(WindowWhyTest, IsOfferedWhereNoPrinterAnswersAndTellsWhatWasFound) {
    Open("sim:R7G?baud=9600&no-echo=on");
    EXPECT_TRUE(Eventually([&] { return OffersWhy() && !IsBusy(); })) << Status();
    SavePicture(*mWindow, "qnterm-why-offered");
    int turns = 0; // of the window while the line is examined
    QTimer beside;
    QObject::connect(&beside, &QTimer::timeout,
                     [&] { turns += mWindow->findChild<Operations*>()->Running() ? 1 : 0; });
    beside.start(20);
    auto* box = mWindow->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr) << Status();
    SavePicture(*box, "qnterm-why-box");
    Press(*box, "Why?");
    ASSERT_TRUE(Eventually([&] { return Shown() != nullptr; }));
    EXPECT_GT(turns, 20);
    EXPECT_THAT(Verdict(), HasSubstr("A printer answers, and not as it should"));
    EXPECT_THAT(Cure(), HasSubstr("qnctl doctor "));
    EXPECT_GE(Shown()->findChild<QTableWidget*>()->rowCount(), 5);
    const FocusStops stops = StopsOf(*Shown());
    EXPECT_THAT(stops.nameless, IsEmpty());
    EXPECT_GE(stops.count, 4);
    EXPECT_THAT(CutCaptions(*Shown()), IsEmpty());
    SavePicture(*Shown(), "qnterm-why");
    EXPECT_TRUE(PortOpen()) << "the control has its port again";
    Press(*Shown(), "Copy");
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), Cure());
    turns = 0;
    Press(*Shown(), "Look Again");
    EXPECT_TRUE(Eventually([&] { return turns > 20 && Shown() != nullptr; }));
    Press(*Shown(), "Close");
}

TEST_F(WindowWhyTest, AProgramThatRunsIsNamedAndGoesOnUndisturbed) {
    Open("sim:R7G");
    AwaitPrinter();
    EXPECT_FALSE(OffersWhy()) << "a printer answers";
    Type("10 PRINT \"still here\":GOTO 10\nRUN\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.find("still") != std::string::npos; }));
    const std::string sent = mTrace.mSent;
    Trigger("Why No Printer…");
    ASSERT_TRUE(Eventually([&] { return Shown() != nullptr; }));
    EXPECT_THAT(Verdict(), HasSubstr("A program runs on the printer"));
    EXPECT_THAT(Cure(), HasSubstr("program stop"));
    Press(*Shown(), "Close");
    const std::size_t before = mTrace.mReceived.size();
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.size() > before + 100; }));
    EXPECT_EQ(mTrace.mSent, sent);
}

TEST_F(WindowWhyTest, ASearchThatLeftARunningProgramAloneOffersWhatCanBeDone) {
    Open("sim:R7G");
    AwaitPrinter();
    const auto run = [this] {
        mTrace.mReceived.clear();
        Type("10 PRINT \"still here\":GOTO 10\nRUN\n");
        EXPECT_TRUE(
            Eventually([&] { return mTrace.mReceived.find("still") != std::string::npos; }));
    };
    const auto offer = [this]() -> QMessageBox* {
        const std::string sent = mTrace.mSent;
        Trigger("Find Printer");
        EXPECT_TRUE(Eventually([&] { return mWindow->findChild<QMessageBox*>() != nullptr; }));
        EXPECT_EQ(mTrace.mSent, sent) << "the program was left alone";
        return mWindow->findChild<QMessageBox*>();
    };
    run();
    QMessageBox* box = offer();
    ASSERT_NE(box, nullptr) << Status();
    EXPECT_THAT(box->text().toStdString(), HasSubstr("still here"));
    EXPECT_THAT(StopsOf(*box).nameless, IsEmpty());
    SavePicture(*box, "qnterm-line-talks");
    Press(*box, "Watch");
    EXPECT_TRUE(Eventually([&] { return mWindow->findChild<QDockWidget*>("line")->isVisible(); }));
    EXPECT_TRUE(Eventually([&] { return mWindow->findChild<QMessageBox*>() == nullptr; }));

    box = offer();
    ASSERT_NE(box, nullptr) << Status();
    Press(*box, "Stop the Program");
    EXPECT_TRUE(Eventually([&] { return !IsBusy() && !OffersWhy(); })) << Status();
    AwaitPrinter();

    run();
    box = offer();
    ASSERT_NE(box, nullptr) << Status();
    const std::size_t before = mTrace.mSent.size();
    Press(*box, "Search All the Same");
    EXPECT_TRUE(Eventually([&] { return mTrace.mSent.size() > before && !IsBusy(); })) << Status();
}

TEST_F(WindowWhyTest, AWindowThatWatchesSendsNothing) {
    Open("sim:R7G", "19200,n,8,1");
    EXPECT_TRUE(Eventually([&] {
        return Status().find("Listening at 19200") != std::string::npos;
    })) << Status();
    EXPECT_TRUE(Eventually([this] { return PortOpen(); })) << Status();
    EXPECT_EQ(mTrace.mSent, "");
    CloseWindow();
    EXPECT_EQ(mTrace.mSent, "");
}

TEST_F(WindowWhyTest, IsOfferedWhereAnotherHasThePort) {
    const std::string path = mFolder.File("printer");
    QProcess printer;
    printer.start(QN_PROGRAMS "/qnsim", {"--link", QString::fromStdString(path)});
    EXPECT_TRUE(printer.waitForReadyRead(Patience));
    const int other = ::open(path.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    Open(QString::fromStdString(path));
    EXPECT_TRUE(Eventually([&] { return OffersWhy() && !IsBusy(); })) << Status();
    WhyButton()->click();
    ASSERT_TRUE(Eventually([&] { return Shown() != nullptr; })) << Status();
    EXPECT_THAT(Verdict(), HasSubstr("The port is "));
    EXPECT_THAT(Verdict(), HasSubstr("End that program."));
    SavePicture(*Shown(), "qnterm-why-busy");
    Press(*Shown(), "Close");
    CloseWindow();
    ::close(other);
    printer.kill();
    printer.waitForFinished(Patience);
}

TEST_F(WindowWhyTest, CancelEndsItAndGivesTheControlItsPortAgain) {
    Open("sim:R7G");
    AwaitPrinter();
    QTimer::singleShot(200, qApp, [this] { mWindow->findChild<Operations*>()->Cancel(); });
    Trigger("Why No Printer…");
    EXPECT_THAT(Status(), HasSubstr("Why: cancelled"));
    EXPECT_EQ(Shown(), nullptr);
    EXPECT_TRUE(PortOpen());
    Type("PRINT 6*7\n");
    EXPECT_TRUE(Eventually([&] { return mTrace.mReceived.ends_with("42\r\nOk\r\n"); }));
}

TEST_F(WindowWhyTest, ClosingTheWindowEndsIt) {
    Open("sim:R7G");
    AwaitPrinter();
    QTimer::singleShot(200, qApp, [this] { mWindow->close(); });
    Trigger("Why No Printer…");
    EXPECT_TRUE(Eventually([&] { return !mWindow->isVisible() && !IsBusy() && !PortOpen(); }));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace
} // namespace qncomm::testing

// The program itself, driven from outside by real keys: what the printer received, what was kept,
// how it ended.

#include "serial/PortListing.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTest>

#include <functional>

namespace qncomm::testing {
namespace {

using qncomm::PortState;
using qncomm::testing::ScratchFolder;
using ::testing::HasSubstr;

constexpr int Patience = 20000; // ms that only a hang reaches

class ProgramTest : public ::testing::Test {
  protected:
    ~ProgramTest() override {
        mProgram.kill();
        mProgram.waitForFinished(Patience);
    }

    void Start(QStringList arguments) {
        arguments << "--settings" << Path("settings.ini") << "--trace" << Path("trace.jsonl");
        mProgram.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        mProgram.start(QN_PROGRAMS "/qnterm", arguments);
        EXPECT_TRUE(mProgram.waitForStarted(Patience));
    }
    QString Path(const char* name) const { return QString::fromStdString(mFolder.File(name)); }

    /// Runs xdotool; what it printed.
    static std::string Act(const QStringList& arguments) {
        QProcess tool;
        tool.start("xdotool", arguments);
        EXPECT_TRUE(tool.waitForFinished(Patience));
        return tool.readAllStandardOutput().trimmed().toStdString();
    }
    /// Waits for the window of that name and gives it the keys.
    static void Enter(const QString& name) {
        const std::string window =
            Act({"search", "--sync", "--onlyvisible", "--limit", "1", "--name", name});
        ASSERT_NE(window, "") << name.toStdString();
        Act({"windowfocus", "--sync", QString::fromStdString(window)});
    }

    /// Presses keys until the window of that name is there: while something runs they do nothing.
    /// One that is slow to come is not asked for twice.
    static void PressUntil(const QString& key, const QString& name) {
        constexpr int comesWithinMs = 5000;
        const auto isThere = [&] {
            return !Act({"search", "--onlyvisible", "--name", name}).empty();
        };
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                Act({"key", key});
                return QTest::qWaitFor(isThere, comesWithinMs);
            },
            Patience))
            << name.toStdString();
        Enter(name);
    }

    bool EventuallyTraced(const std::string& text) {
        return QTest::qWaitFor(
            [&] { return mFolder.Read("trace.jsonl").find(text) != std::string::npos; }, Patience);
    }

    /// Starts it on the port "printer" and sends a file that takes a paced printer an hour.
    void StartLongTransfer() {
        std::string text;
        for (int line = 0; line < 200'000; ++line)
            text += "shelf label\r\n";
        mFolder.Write("LONG.DAT", text);
        // The toolkit's box of files forgets what is typed while it reads another folder.
        mProgram.setWorkingDirectory(QFileInfo(Path("LONG.DAT")).path());
        Start({"--port", Path("printer")});
        Enter("R7G, Quorin");
        Act({"key", "ctrl+shift+d"});
        PressUntil("Insert", "Send to c:");
        Act({"type", "--delay", "5", "LONG.DAT"});
        Act({"key", "Return"});
        EXPECT_TRUE(EventuallyTraced("shelf label")) << "no transfer";
    }

    /// The status with which the program ends by itself.
    int End() {
        EXPECT_TRUE(mProgram.waitForFinished(Patience));
        EXPECT_EQ(mProgram.exitStatus(), QProcess::NormalExit);
        return mProgram.exitCode();
    }

    ScratchFolder mFolder;
    QProcess mProgram;
};

TEST_F(ProgramTest, KeysGoToThePrinterAndTheProgramEndsWell) {
    Start({"--port", "sim:R7G"});
    Enter("R7G, Quorin");
    Act({"type", "--delay", "5", "PRINT 6*7"});
    Act({"key", "Return"});
    EXPECT_TRUE(EventuallyTraced("42\\r\\nOk\\r\\n")) << mFolder.Read("trace.jsonl");
    Act({"key", "ctrl+shift+q"});
    EXPECT_EQ(End(), 0);
    EXPECT_THAT(mFolder.Read("settings.ini"), HasSubstr("Geometry"));
    EXPECT_THAT(mFolder.Read("settings.ini"), ::testing::Not(HasSubstr("Commport")))
        << "a port for one run became the configured one";
}

TEST_F(ProgramTest, TheFirstStartTakesOneKeyToASession) {
    Start({});
    Enter("Choose a printer");
    Act({"key", "Return"});
    Enter("R7G, Quorin");
    EXPECT_THAT(mFolder.Read("settings.ini"), HasSubstr("sim:R7G"));
    Act({"key", "ctrl+shift+q"});
    EXPECT_EQ(End(), 0);
}

TEST_F(ProgramTest, ClosingDuringASearchEndsTheProgramWell) {
    Start({"--port", "sim:R7G?baud=300&format=s,7,1"}); // no search finds this one
    Enter("QNComm Terminal");
    EXPECT_TRUE(EventuallyTraced("tx"));
    Act({"key", "ctrl+shift+q"});
    EXPECT_EQ(End(), 0);
}

/// A printer beside the program, on a port of that name.
class Printer {
  public:
    explicit Printer(const QString& port, QStringList options) {
        options << "--link" << port;
        mProcess.start(QN_PROGRAMS "/qnsim", options);
        EXPECT_TRUE(mProcess.waitForReadyRead(Patience)) << "no printer";
        EXPECT_EQ(mPort.Give(1, port.toStdString()), "");
    }
    ~Printer() {
        mProcess.kill();
        mProcess.waitForFinished(Patience);
    }
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    /// What another program finds at the port.
    qncomm::PortState State() const { return ListPorts(mPort).front().state; }

  private:
    QProcess mProcess;
    qncomm::PortBindings mPort;
};

TEST_F(ProgramTest, ClosingDuringATransferEndsTheProgramWellAndFreesThePort) {
    const Printer printer(Path("printer"), {"--paced"});
    StartLongTransfer();
    EXPECT_EQ(printer.State(), PortState::Busy);
    Enter("R7G, Quorin");
    Act({"key", "ctrl+shift+q"});
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(printer.State(), PortState::Free);
}

TEST_F(ProgramTest, ClosingDuringARestartEndsTheProgramWellAndFreesThePort) {
    const Printer printer(Path("printer"), {"--boot-ms", "600000"});
    Start({"--port", Path("printer")});
    Enter("R7G, Quorin");
    Act({"key", "ctrl+shift+d"});
    PressUntil("Insert", "Send to c:"); // the printer's lists have been read
    Act({"key", "Escape"});
    Enter("R7G, Quorin");
    Act({"key", "alt+p", "r"});
    Enter("Restart");
    Act({"key", "alt+r"});
    Enter("Printer Reboot");
    EXPECT_EQ(printer.State(), PortState::Busy);
    Enter("R7G, Quorin");
    Act({"key", "ctrl+shift+q"});
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(printer.State(), PortState::Free);
}

TEST_F(ProgramTest, ASignalClosesTheWindowAndCancelsWhatRuns) {
    const Printer printer(Path("printer"), {"--paced"});
    StartLongTransfer();
    mProgram.terminate(); // SIGTERM
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(printer.State(), PortState::Free);
    EXPECT_THAT(mFolder.Read("settings.ini"), HasSubstr("Geometry"));
}

TEST_F(ProgramTest, HelpAndVersionNeedNoDisplay) {
    QProcessEnvironment bare = QProcessEnvironment::systemEnvironment();
    bare.remove("DISPLAY");
    mProgram.setProcessEnvironment(bare);
    mProgram.start(QN_PROGRAMS "/qnterm", {"--version"});
    EXPECT_EQ(End(), 0);
    EXPECT_THAT(mProgram.readAllStandardOutput().toStdString(), HasSubstr("qnterm "));
    mProgram.start(QN_PROGRAMS "/qnterm", {"--help"});
    EXPECT_EQ(End(), 0);
    EXPECT_THAT(mProgram.readAllStandardOutput().toStdString(),
                ::testing::StartsWith("Usage: qnterm [options]"));
    mProgram.start(QN_PROGRAMS "/qnterm", {"--nonsense"});
    EXPECT_EQ(End(), 2);
}

} // namespace
} // namespace qncomm::testing

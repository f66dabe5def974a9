#include "testing/programs/QnctlFixture.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <pty.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

namespace {

using qncomm::testing::Ended;
using qncomm::testing::Program;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A line with nobody at its other end.
struct SilentLine {
    SilentLine() {
        int mine = -1;
        int theirs = -1;
        std::array<char, 64> name{};
        if (::openpty(&mine, &theirs, name.data(), nullptr, nullptr) != 0) throw 0;
        mMaster = qncomm::Fd(mine);
        mSlave = qncomm::Fd(theirs);
        path = name.data();
        termios raw{};
        ::tcgetattr(theirs, &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(theirs, TCSANOW, &raw);
    }
    termios Settings() const {
        termios now{};
        ::tcgetattr(mSlave.Get(), &now);
        return now;
    }
    std::string path;

  private:
    qncomm::Fd mMaster;
    qncomm::Fd mSlave;
};

using ExitStatus = qncomm::testing::QnctlFixture;

TEST_F(ExitStatus, Is0WhenACommandIsDone) {
    const Ended ended = Run({"send", "PRINT 1+2", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "3\n");
    EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(ExitStatus, Is2ForAMistypedCommandWithTheOneThatWasMeant) {
    for (const auto& [typed, meant] :
         {std::pair<qncomm::testing::Arguments, std::string>{{"conect"}, "connect"},
          {{"--port", "sim:R7G", "filse"}, "files"},
          {{"term"}, "terminal"},
          {{"program", "strop", "--quiet"}, "program stop"}}) {
        const Ended ended = Run(typed);
        EXPECT_EQ(ended.status, 2);
        EXPECT_THAT(ended.err, HasSubstr(" Did you mean \"" + meant + "\"?\n"));
    }
    EXPECT_THAT(Run({"xylophone"}).err,
                StartsWith("qnctl: There is no command \"xylophone\".\nRun with --help"));
}

TEST_F(ExitStatus, Is2ForAnOptionThatThereIsNot) {
    EXPECT_THAT(Run({"files", "--long"}).err,
                StartsWith("qnctl: There is no option \"--long\" here.\n"));
}

TEST_F(ExitStatus, Is2ForATextThatTheShellHasCutAtItsBlanks) {
    const Ended ended = Run({"send", "PRINT", "1+1", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err,
                StartsWith("qnctl: \"send\" takes no more words: 1+1. A text with blanks "
                           "stands in quotes: 'PRINT 1+1'\n"));
}

TEST_F(ExitStatus, Is1ForARaisedErrorWithItsNumberDescriptionAndSource) {
    const Ended ended = Run({"files", "nada:", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.err, "qnctl: error 1010: Missing or invalid device name. "
                         "[clsQuorin:IsValidPrinterDevice]\n");
    EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(ExitStatus, Is1ForAnErrorThatThePrinterReports) {
    const Ended ended = Run({"send", "LOAD \"ram:NONE.PRG\"", "--port", "sim:R7A"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err,
                AllOf(StartsWith("qnctl: error 61"), HasSubstr("[clsDatalink:GetPrinterError]")));
}

TEST_F(ExitStatus, Is2ForAWrongCommandLine) {
    for (const qncomm::testing::Arguments& wrong :
         {qncomm::testing::Arguments{},
          {"bogus"},
          {"files"},
          {"info", "--port"},
          {"info", "more"},
          {"ports", "--yes", "--no"},
          {"info", "--port", "17"},
          {"info", "--port", "-1"},
          {"info", "--port", "COM5"},
          {"info", "--port", "printer"},
          {"info", "--port", "sim:R9"},
          {"info", "--port", "tcp://nowhere"},
          {"info", "--port", "sim:R7G", "--trace", "/"},
          {"info", "--port", "/dev/tty", "--labels", "."}}) {
        const Ended ended = Run(wrong);
        EXPECT_EQ(ended.status, 2) << testing::PrintToString(wrong);
        EXPECT_THAT(ended.err, StartsWith("qnctl: ")) << testing::PrintToString(wrong);
        EXPECT_THAT(ended.out, IsEmpty());
    }
}

TEST_F(ExitStatus, Is2WithTheChoicesWhenNoPortIsConfigured) {
    const Ended ended = Run({"info"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, AllOf(HasSubstr("No port is configured"), HasSubstr("sim:R7G"),
                                 HasSubstr("--remember")));
}

TEST_F(ExitStatus, Is3WhenNoPrinterAnswers) {
    const SilentLine line;
    const Ended ended = Run({"info", "--port", line.path});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.err, "qnctl: No printer answered on " + line.path + ".\n");
}

TEST_F(ExitStatus, Is4ForADeviceThatIsNotThere) {
    const Ended ended = Run({"info", "--port", "/dev/ttyNOT0"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_THAT(ended.err, HasSubstr("/dev/ttyNOT0"));
}

TEST_F(ExitStatus, Is4ForABusyPortAndNamesTheHolder) {
    StartSimulator();
    const auto holder = Start({"terminal", "--port", Printer()});
    holder->Type("PRINT \"I have it\"\n");
    ASSERT_TRUE(holder->WaitForOut("I have it\r\nOk")) << holder->Err();
    const Ended ended = Run({"info", "--port", Printer()});
    EXPECT_EQ(ended.status, 4);
    EXPECT_THAT(ended.err, AllOf(HasSubstr("qnctl"), HasSubstr(Printer())));
    EXPECT_THAT(ended.err, testing::ContainsRegex("[0-9]+")) << "the holder's process number";
    holder->CloseInput();
    EXPECT_EQ(holder->Wait(), 0);
}

TEST_F(ExitStatus, Is130ForCtrlCWhichLeavesThePortAsItWas) {
    const SilentLine line;
    const termios before = line.Settings();
    const auto program = Start({"connect", "--port", line.path});
    ASSERT_TRUE(program->WaitForErr("Searching...")) << program->Err();
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Err(), testing::EndsWith("qnctl: Cancelled.\n"));
    EXPECT_THAT(program->Out(), IsEmpty());
    const termios after = line.Settings();
    EXPECT_EQ(after.c_cflag, before.c_cflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(::cfgetospeed(&after), ::cfgetospeed(&before));
    const qncomm::Fd again(::open(line.path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK));
    EXPECT_EQ(::flock(again.Get(), LOCK_EX | LOCK_NB), 0) << "the port is still held";
}

TEST_F(ExitStatus, QuietLeavesOnlyTheError) {
    const SilentLine line;
    const Ended ended = Run({"connect", "--quiet", "--port", line.path});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.err, "qnctl: No printer answered on " + line.path + ".\n");
}

} // namespace

#include "testing/programs/QnctlFixture.h"

#include <csignal>
#include <functional>
#include <string>

#include <termios.h>

namespace {

using qncomm::testing::Ended;
using qncomm::testing::Program;
using testing::HasSubstr;
using testing::StartsWith;

class Terminal : public qncomm::testing::QnctlFixture {
  protected:
    void SetUp() override { StartSimulator(); }

    std::unique_ptr<Program> StartAtATerminal() {
        auto program = Start({"terminal", "--port", Printer()}, Program::Stdio::Terminal);
        EXPECT_TRUE(program->WaitForOut("Ctrl-] ends.")) << program->Out();
        return program;
    }

    static tcflag_t ModesOf(const Program& program) {
        termios now{};
        EXPECT_EQ(::tcgetattr(program.Terminal(), &now), 0);
        return now.c_lflag & (ICANON | ECHO | ISIG);
    }
};

TEST_F(Terminal, SendsKeysAndShowsRepliesUntilTheEndKey) {
    const auto program = StartAtATerminal();
    program->Type("PRINT 20+3\r");
    EXPECT_TRUE(program->WaitForOut("23\r\n")) << program->Out();
    EXPECT_TRUE(program->WaitForOut("Ok"));
    program->Type("PRINT \"å\"+CHR$(128)\r");
    EXPECT_TRUE(program->WaitForOut("å€")) << program->Out();
    program->Type("\x1D");
    EXPECT_EQ(program->Wait(), 0);
}

TEST_F(Terminal, LeavesTheTerminalSaneAtTheEndKey) {
    const auto program = Start({"terminal", "--port", Printer()}, Program::Stdio::Terminal);
    const tcflag_t before = ModesOf(*program);
    ASSERT_TRUE(program->WaitForOut("Ctrl-] ends."));
    program->Type("PRINT 5*5\r");
    ASSERT_TRUE(program->WaitForOut("25\r\n"));
    EXPECT_EQ(ModesOf(*program), 0U);
    program->Type("\x1D");
    EXPECT_EQ(program->Wait(), 0);
    EXPECT_EQ(ModesOf(*program), before);
}

TEST_F(Terminal, LeavesTheTerminalSaneWhenItIsEndedFromOutside) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto program = StartAtATerminal();
        program->Type("PRINT 5*5\r");
        ASSERT_TRUE(program->WaitForOut("25\r\n"));
        program->Signal(signal);
        EXPECT_EQ(program->Wait(), 130);
        EXPECT_NE(ModesOf(*program) & ECHO, 0U) << "after signal " << signal;
    }
}

/// A terminal in the hands of a shell with job control.
class StoppedTerminal : public Terminal {
  protected:
    /// The script runs "$@" as a job of its own, which tells its process first.
    std::unique_ptr<Program> StartInShell(const std::string& script) {
        auto shell = Start(
            {"terminal", "--port", Printer()}, Program::Stdio::Terminal,
            {"bash", "-mc", script, "bash", "sh", "-c", "echo process $$ end; exec \"$@\"", "sh"});
        EXPECT_TRUE(shell->WaitForOut(" end")) << shell->Out();
        const std::size_t at = shell->Out().find("process ") + 8;
        mProcess = std::stoi(shell->Out().substr(at));
        return shell;
    }

    void StopsAndGoesOn(const std::function<void(Program&)>& stop) {
        const auto shell = StartInShell("\"$@\"; echo stopped $?; read; fg; echo over $?");
        ASSERT_TRUE(shell->WaitForOut("Ctrl-] ends.")) << shell->Out();
        const tcflag_t raw = ModesOf(*shell);
        stop(*shell);
        ASSERT_TRUE(shell->WaitForOut("stopped 148")) << shell->Out();
        EXPECT_EQ(raw, 0U);
        EXPECT_NE(ModesOf(*shell) & ECHO, 0U);
        shell->Type("\n");
        ASSERT_TRUE(shell->WaitForOut("stopped 148", "Ctrl-] ends.")) << shell->Out();
        EXPECT_EQ(ModesOf(*shell), 0U);
        shell->Type("PRINT 6*7\r");
        EXPECT_TRUE(shell->WaitForOut("42\r\n")) << shell->Out();
        shell->Type("\x1D");
        EXPECT_TRUE(shell->WaitForOut("over 0")) << shell->Out();
        EXPECT_EQ(shell->Wait(), 0);
    }

    pid_t mProcess = 0;
};

TEST_F(StoppedTerminal, IsThatOfTheShellUntilTheProgramGoesOn) {
    StopsAndGoesOn([this](Program&) { ::kill(mProcess, SIGTSTP); });
}

TEST_F(StoppedTerminal, AKeyStopsTheProgram) {
    StopsAndGoesOn([](Program& shell) {
        shell.Type("\x14"
                   "z");
    });
}

TEST_F(StoppedTerminal, InTheBackgroundItStopsAndCanBeEnded) {
    const auto shell = StartInShell("\"$@\" & wait %1; echo stopped $?; kill %1; wait -f %1; "
                                    "echo over $?");
    EXPECT_TRUE(shell->WaitForOut("stopped 150")) << shell->Out(); // by SIGTTOU
    EXPECT_TRUE(shell->WaitForOut("over 130")) << shell->Out();
    EXPECT_EQ(shell->Wait(), 0);
    EXPECT_NE(ModesOf(*shell) & ECHO, 0U);
}

TEST_F(Terminal, CtrlCGoesToThePrinter) {
    const auto program = StartAtATerminal();
    program->Type("\x03\r");
    program->Type("PRINT \"still\"+\"here\"\r");
    EXPECT_TRUE(program->WaitForOut("stillhere")) << program->Out();
    program->Type("\x1D");
    EXPECT_EQ(program->Wait(), 0);
}

TEST_F(Terminal, AKeySendsABreakThatStopsAProgram) {
    const auto program = Start({"terminal", "--port", "sim:R7G"}, Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut("Ctrl-] ends."));
    program->Type("10 GOTO 10\rRUN\r");
    ASSERT_TRUE(program->WaitForOut("RUN\r\n"));
    program->Type("\x14"
                  "b");
    EXPECT_TRUE(program->WaitForOut("Break in line 10\r\nOk")) << program->Out();
    program->Type("\x1D");
    EXPECT_EQ(program->Wait(), 0);
}

TEST_F(Terminal, WithoutATerminalSendsLinesAndShowsReplies) {
    const Ended ended = Run({"terminal", "--port", Printer()}, "PRINT 1+1\nPRINT \"two\"\n");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "PRINT 1+1\r\n2\r\nOk\r\nPRINT \"two\"\r\ntwo\r\nOk\r\n");
}

TEST_F(Terminal, FindsThePrinterBeforeItShowsAnything) {
    StartSimulator({"--baud", "19200"});
    const Ended ended = Run({"terminal", "--port", Printer()}, "PRINT VERSION$(1)\n");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_THAT(ended.out, StartsWith("PRINT VERSION$(1)\r\nR7G\r\n"));
}

TEST_F(Terminal, EndsWith4WhenTheDeviceGoesAway) {
    const auto program = StartAtATerminal();
    program->Type("PRINT 5*5\r");
    ASSERT_TRUE(program->WaitForOut("25\r\n"));
    StopSimulator();
    EXPECT_EQ(program->Wait(), 4);
    EXPECT_THAT(program->Out(), HasSubstr("qnctl: "));
}

} // namespace

#include "testing/programs/QnctlFixture.h"

#include <csignal>

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

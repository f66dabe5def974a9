#include "PrinterBench.h"

namespace qncomm::testing {
namespace {

TEST(Console, EchoesALineAnswersAndPrompts) {
    PrinterBench bench;
    EXPECT_EQ(bench.Ask("PRINT \"HELLO\""), "PRINT \"HELLO\"\r\nHELLO\r\nOk\r\n");
}

TEST(Console, TakesReturnLineFeedAndBothAsOneLineEnd) {
    PrinterBench bench;
    bench.Send("PRINT 1\rPRINT 2\nPRINT 3\r\n");
    EXPECT_EQ(bench.Read(), "PRINT 1\r\n1\r\nOk\r\nPRINT 2\r\n2\r\nOk\r\nPRINT 3\r\n3\r\nOk\r\n");
}

TEST(Console, EmptyLineIsEchoedWithoutPrompt) {
    PrinterBench bench;
    bench.Send("\r");
    EXPECT_EQ(bench.Read(), "\r\n");
}

TEST(Console, AnswersTheSearchProbe) {
    PrinterBench bench;
    bench.Send("\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r");
    EXPECT_EQ(bench.Read(), "\r\nIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r\nHELLO\r\nOk\r\n");
}

TEST(Console, AnswersTheSearchProbeWhileLinesAreCollected) {
    PrinterBench bench;
    bench.Ask("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF");
    bench.Send("\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r");
    EXPECT_EQ(bench.Read(), "HELLO\r\nOk\r\n");
}

TEST(Console, HandshakePrintsBothModesAndSetsThem) {
    PrinterBench bench;
    const std::string line = "PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2";
    EXPECT_EQ(bench.Lines(line), (std::vector<std::string>{"-1", "1"}));
    EXPECT_EQ(bench.Lines(line), (std::vector<std::string>{"-1", "2"}));
}

TEST(Console, MarkerComesFromTheWiredChannelOnly) {
    PrinterBench bench("R7G?uart=2");
    bench.Send("\rOPEN\"UART1:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"1\":CLOSE68\r");
    EXPECT_EQ(bench.Read().find("\r\n=1"), std::string::npos);
    bench.Send("\rOPEN\"UART2:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"2\":CLOSE68\r");
    EXPECT_NE(bench.Read().find("\r\n=2\r\nOk\r\n"), std::string::npos);
}

TEST(Console, SaysVersionAndModel) {
    PrinterBench bench("R7FZV");
    EXPECT_EQ(bench.Lines("PRINT VERSION$(0):PRINT VERSION$(1)"),
              (std::vector<std::string>{"Quorin 7.21", "R7FZV"}));
}

TEST(Console, NonProgrammableModelSaysAVersionThatBeginsWithV) {
    PrinterBench bench("R7C");
    EXPECT_EQ(bench.Lines("PRINT VERSION$(0):PRINT VERSION$(1)").front().front(), 'V');
    bench.Ask("SYSVAR(19)=2");
    EXPECT_EQ(bench.Line("10 PRINT 1"), "Error 17 in line 10: Printer is not programmable");
    EXPECT_EQ(bench.Line("RUN"), "Error 17: Printer is not programmable");
}

TEST(Console, ErrorLineTakesItsFormFromSysvar19) {
    PrinterBench bench;
    bench.Ask("10 KILL \"nothing\"");
    EXPECT_EQ(bench.Line("KILL \"nothing\""), "Error 1022: File not found");
    EXPECT_EQ(bench.Line("RUN"), "Error 1022: File not found");
    bench.Ask("SYSVAR(19)=2");
    EXPECT_EQ(bench.Line("KILL \"nothing\""), "Error 1022: File not found");
    EXPECT_EQ(bench.Line("RUN"), "Error 1022 in line 10: File not found");
}

TEST(Console, VerbosityEightShowsErrorsAlone) {
    PrinterBench bench;
    EXPECT_EQ(bench.Ask("SYSVAR(18)=8:SYSVAR(19)=2"), "SYSVAR(18)=8:SYSVAR(19)=2\r\n");
    EXPECT_EQ(bench.Ask("PRINT 5"), "5\r\n");
    EXPECT_EQ(bench.Ask("PRINT )"), "Error 19: Syntax error\r\n");
    EXPECT_EQ(bench.Ask("SYSVAR(18)=-1"), "Ok\r\n");
}

TEST(Console, ModuleErrorsNameThePositionOfTheLine) {
    PrinterBench bench;
    bench.Ask("NEW");
    bench.Ask("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF");
    EXPECT_EQ(bench.Ask("10 PRINT 1"), "");
    EXPECT_EQ(bench.Ask(""), "");
    EXPECT_EQ(bench.Ask("20 PRINT )"), "Error 19 in line 3: Syntax error\r\n");
    EXPECT_EQ(bench.Ask("PRINT 3"), "");
    EXPECT_EQ(bench.Ask("IMMEDIATE ON"), "");
    EXPECT_EQ(bench.Ask("SYSVAR(18)=-1:SYSVAR(19)=1"), "Ok\r\n");
    EXPECT_EQ(bench.Lines("LIST"),
              (std::vector<std::string>{"10 PRINT 1", "20 PRINT )", "30 PRINT 3"}));
}

TEST(Console, ProgramLinesAreEchoedWithoutPrompt) {
    PrinterBench bench;
    EXPECT_EQ(bench.Ask("1 PRINT \"RUN MODE\":END"), "1 PRINT \"RUN MODE\":END\r\n");
    EXPECT_EQ(bench.Ask("RUN"), "RUN\r\nRUN MODE\r\nOk\r\n");
    EXPECT_EQ(bench.Ask("1"), "1\r\n");
    EXPECT_EQ(bench.Ask("List 1"), "List 1\r\nOk\r\n");
}

TEST(Console, RunRefusesAProgramThatDoesNotRead) {
    PrinterBench bench;
    bench.Ask("SYSVAR(19)=2");
    bench.Ask("1 PRINT \"RUN MODE\":END");
    bench.Ask("20 GOTO 99");
    EXPECT_EQ(bench.Line("RUN"), "Error 8 in line 20: Undefined line number");
}

TEST(Console, LineBeyondTheLimitIsRefusedWhole) {
    PrinterBench bench;
    bench.Ask("SYSVAR(18)=10:SYSVAR(19)=2");
    EXPECT_EQ(bench.Ask("PRINT \"" + std::string(100'000, 'x') + "\""),
              "Error 20: Line too long\r\nOk\r\n");
    EXPECT_EQ(bench.Ask("PRINT 1"), "1\r\nOk\r\n");
}

TEST(Console, BackspaceTakesTheLastCharacterBack) {
    PrinterBench bench;
    bench.Send("PRINT 12\b3\r");
    EXPECT_EQ(bench.Read(), "PRINT 12\b \b3\r\n13\r\nOk\r\n");
}

TEST(Console, BreakCharacterStopsAnEndlessProgram) {
    PrinterBench bench;
    bench.Ask("10 GOTO 10");
    bench.Send("RUN\r");
    bench.Printer().Advance(bench.Now());
    EXPECT_TRUE(bench.Printer().NextDue().has_value());
    bench.Send("\x03");
    EXPECT_EQ(bench.Read(), "RUN\r\nBreak in line 10\r\nOk\r\n");
}

TEST(Console, BreakConditionStopsAnEndlessProgram) {
    PrinterBench bench;
    bench.Ask("10 GOTO 10");
    bench.Send("RUN\r");
    bench.Printer().Advance(bench.Now());
    bench.Printer().Break(bench.Now());
    EXPECT_EQ(bench.Read(), "RUN\r\nBreak in line 10\r\nOk\r\n");
}

TEST(Console, RestartTakesItsTimeAndPutsModesBack) {
    PrinterBench bench("R7G?boot-ms=4000");
    bench.Ask("SYSVAR(19)=2");
    bench.Ask("10 PRINT 1");
    bench.Send("REBOOT\r\n");
    EXPECT_EQ(bench.Read(), "REBOOT\r\n");
    EXPECT_FALSE(bench.Printer().Dsr());
    bench.Send("PRINT 1\r\n");
    EXPECT_EQ(bench.Read(3'999'999), "");
    EXPECT_EQ(bench.Read(1), "\r\nQuorin 8.30\r\nR7G\r\nOk\r\n");
    EXPECT_TRUE(bench.Printer().Dsr());
    EXPECT_EQ(bench.Line("PRINT SYSVAR(19)"), "1");
    EXPECT_EQ(bench.Lines("LIST"), std::vector<std::string>{});
}

} // namespace
} // namespace qncomm::testing

#include "PrinterRig.h"

namespace qncomm::testing {
namespace {

TEST(Console, EchoesALineAnswersAndPrompts) {
    PrinterRig rig;
    EXPECT_EQ(rig.Ask("PRINT \"HELLO\""), "PRINT \"HELLO\"\r\nHELLO\r\nOk\r\n");
}

TEST(Console, TakesReturnLineFeedAndBothAsOneLineEnd) {
    PrinterRig rig;
    rig.Send("PRINT 1\rPRINT 2\nPRINT 3\r\n");
    EXPECT_EQ(rig.Read(), "PRINT 1\r\n1\r\nOk\r\nPRINT 2\r\n2\r\nOk\r\nPRINT 3\r\n3\r\nOk\r\n");
}

TEST(Console, EmptyLineIsEchoedWithoutPrompt) {
    PrinterRig rig;
    rig.Send("\r");
    EXPECT_EQ(rig.Read(), "\r\n");
}

TEST(Console, AnswersTheSearchProbe) {
    PrinterRig rig;
    rig.Send("\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r");
    EXPECT_EQ(rig.Read(), "\r\nIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r\nHELLO\r\nOk\r\n");
}

TEST(Console, AnswersTheSearchProbeWhileLinesAreCollected) {
    PrinterRig rig;
    rig.Ask("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF");
    rig.Send("\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r");
    EXPECT_EQ(rig.Read(), "HELLO\r\nOk\r\n");
}

TEST(Console, HandshakePrintsBothModesAndSetsThem) {
    PrinterRig rig;
    const std::string line = "PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2";
    EXPECT_EQ(rig.Lines(line), (std::vector<std::string>{"-1", "1"}));
    EXPECT_EQ(rig.Lines(line), (std::vector<std::string>{"-1", "2"}));
}

TEST(Console, MarkerComesFromTheWiredChannelOnly) {
    PrinterRig rig("R7G?uart=2");
    rig.Send("\rOPEN\"UART1:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"1\":CLOSE68\r");
    EXPECT_EQ(rig.Read().find("\r\n=1"), std::string::npos);
    rig.Send("\rOPEN\"UART2:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"2\":CLOSE68\r");
    EXPECT_NE(rig.Read().find("\r\n=2\r\nOk\r\n"), std::string::npos);
}

TEST(Console, SaysVersionAndModel) {
    PrinterRig rig("R7FZV");
    EXPECT_EQ(rig.Lines("PRINT VERSION$(0):PRINT VERSION$(1)"),
              (std::vector<std::string>{"Quorin 7.21", "R7FZV"}));
}

TEST(Console, NonProgrammableModelSaysAVersionThatBeginsWithV) {
    PrinterRig rig("R7C");
    EXPECT_EQ(rig.Lines("PRINT VERSION$(0):PRINT VERSION$(1)").front().front(), 'V');
    rig.Ask("SYSVAR(19)=2");
    EXPECT_EQ(rig.Line("10 PRINT 1"), "Error 17 in line 10: Printer is not programmable");
    EXPECT_EQ(rig.Line("RUN"), "Error 17: Printer is not programmable");
}

TEST(Console, ErrorLineTakesItsFormFromSysvar19) {
    PrinterRig rig;
    rig.Ask("10 KILL \"nothing\"");
    EXPECT_EQ(rig.Line("KILL \"nothing\""), "Error 1022: File not found");
    EXPECT_EQ(rig.Line("RUN"), "Error 1022: File not found");
    rig.Ask("SYSVAR(19)=2");
    EXPECT_EQ(rig.Line("KILL \"nothing\""), "Error 1022: File not found");
    EXPECT_EQ(rig.Line("RUN"), "Error 1022 in line 10: File not found");
}

TEST(Console, VerbosityEightShowsErrorsAlone) {
    PrinterRig rig;
    EXPECT_EQ(rig.Ask("SYSVAR(18)=8:SYSVAR(19)=2"), "SYSVAR(18)=8:SYSVAR(19)=2\r\n");
    EXPECT_EQ(rig.Ask("PRINT 5"), "5\r\n");
    EXPECT_EQ(rig.Ask("PRINT )"), "Error 19: Syntax error\r\n");
    EXPECT_EQ(rig.Ask("SYSVAR(18)=-1"), "Ok\r\n");
}

TEST(Console, ModuleErrorsNameThePositionOfTheLine) {
    PrinterRig rig;
    rig.Ask("NEW");
    rig.Ask("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF");
    EXPECT_EQ(rig.Ask("10 PRINT 1"), "");
    EXPECT_EQ(rig.Ask(""), "");
    EXPECT_EQ(rig.Ask("20 PRINT )"), "Error 19 in line 3: Syntax error\r\n");
    EXPECT_EQ(rig.Ask("PRINT 3"), "");
    EXPECT_EQ(rig.Ask("IMMEDIATE ON"), "");
    EXPECT_EQ(rig.Ask("SYSVAR(18)=-1:SYSVAR(19)=1"), "Ok\r\n");
    EXPECT_EQ(rig.Lines("LIST"),
              (std::vector<std::string>{"10 PRINT 1", "20 PRINT )", "30 PRINT 3"}));
}

TEST(Console, ProgramLinesAreEchoedWithoutPrompt) {
    PrinterRig rig;
    EXPECT_EQ(rig.Ask("1 PRINT \"RUN MODE\":END"), "1 PRINT \"RUN MODE\":END\r\n");
    EXPECT_EQ(rig.Ask("RUN"), "RUN\r\nRUN MODE\r\nOk\r\n");
    EXPECT_EQ(rig.Ask("1"), "1\r\n");
    EXPECT_EQ(rig.Ask("List 1"), "List 1\r\nOk\r\n");
}

TEST(Console, RunRefusesAProgramThatDoesNotRead) {
    PrinterRig rig;
    rig.Ask("SYSVAR(19)=2");
    rig.Ask("1 PRINT \"RUN MODE\":END");
    rig.Ask("20 GOTO 99");
    EXPECT_EQ(rig.Line("RUN"), "Error 8 in line 20: Undefined line number");
}

TEST(Console, LineBeyondTheLimitIsRefusedWhole) {
    PrinterRig rig;
    rig.Ask("SYSVAR(18)=10:SYSVAR(19)=2");
    EXPECT_EQ(rig.Ask("PRINT \"" + std::string(100'000, 'x') + "\""),
              "Error 20: Line too long\r\nOk\r\n");
    EXPECT_EQ(rig.Ask("PRINT 1"), "1\r\nOk\r\n");
}

TEST(Console, BackspaceTakesTheLastCharacterBack) {
    PrinterRig rig;
    rig.Send("PRINT 12\b3\r");
    EXPECT_EQ(rig.Read(), "PRINT 12\b \b3\r\n13\r\nOk\r\n");
}

TEST(Console, BreakCharacterStopsAnEndlessProgram) {
    PrinterRig rig;
    rig.Ask("10 GOTO 10");
    rig.Send("RUN\r");
    rig.Printer().Advance(rig.Now());
    EXPECT_TRUE(rig.Printer().NextDue().has_value());
    rig.Send("\x03");
    EXPECT_EQ(rig.Read(), "RUN\r\nBreak in line 10\r\nOk\r\n");
}

TEST(Console, BreakConditionStopsAnEndlessProgram) {
    PrinterRig rig;
    rig.Ask("10 GOTO 10");
    rig.Send("RUN\r");
    rig.Printer().Advance(rig.Now());
    rig.Printer().Break(rig.Now());
    EXPECT_EQ(rig.Read(), "RUN\r\nBreak in line 10\r\nOk\r\n");
}

TEST(Console, RestartTakesItsTimeAndPutsModesBack) {
    PrinterRig rig("R7G?boot-ms=4000");
    rig.Ask("SYSVAR(19)=2");
    rig.Ask("10 PRINT 1");
    rig.Send("REBOOT\r\n");
    EXPECT_EQ(rig.Read(), "REBOOT\r\n");
    EXPECT_FALSE(rig.Printer().Dsr());
    rig.Send("PRINT 1\r\n");
    EXPECT_EQ(rig.Read(3'999'999), "");
    EXPECT_EQ(rig.Read(1), "\r\nQuorin 8.30\r\nR7G\r\nOk\r\n");
    EXPECT_TRUE(rig.Printer().Dsr());
    EXPECT_EQ(rig.Line("PRINT SYSVAR(19)"), "1");
    EXPECT_EQ(rig.Lines("LIST"), std::vector<std::string>{});
}

} // namespace
} // namespace qncomm::testing

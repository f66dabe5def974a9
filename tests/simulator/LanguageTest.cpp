#include "PrinterRig.h"

namespace qncomm::testing {
namespace {

struct Case {
    std::string_view line;
    std::string_view answer;
};

class Expressions : public ::testing::TestWithParam<Case> {};

TEST_P(Expressions, AnswerAsExpected) {
    PrinterRig rig;
    rig.Ask("SYSVAR(19)=2");
    EXPECT_EQ(rig.Line(GetParam().line), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, Expressions,
    ::testing::Values(Case{"PRINT 1+2*3", "7"}, Case{"PRINT (1+2)*3", "9"},
                      Case{"PRINT -2^2", "-4"}, Case{"PRINT 7/2", "3.5"}, Case{"PRINT 7\\2", "3"},
                      Case{"PRINT 7 MOD 4", "3"}, Case{"PRINT 10-3-2", "5"},
                      Case{"PRINT 1E3", "1000"}, Case{"PRINT .5", "0.5"}, Case{"PRINT &HFF", "255"},
                      Case{"PRINT 1/3", "0.333333333"}, Case{"PRINT 1=1", "-1"},
                      Case{"PRINT 2<>2", "0"}, Case{"PRINT NOT 0", "-1"},
                      Case{"PRINT 6 AND 3", "2"}, Case{"PRINT 6 OR 3", "7"},
                      Case{"PRINT 6 XOR 3", "5"}, Case{"PRINT 1<2 AND 2<=2", "-1"},
                      Case{"PRINT ABS(-3);SGN(-3);INT(-1.5)", "3-1-2"}, Case{"PRINT SQR(16)", "4"},
                      Case{"PRINT 1/0", "Error 11: Division by zero"},
                      Case{"PRINT 1E300*1E300", "Error 6: Overflow"},
                      Case{"PRINT SQR(-1)", "Error 5: Illegal argument"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, Expressions,
    ::testing::Values(
        Case{"PRINT \"A\"+\"B\"", "AB"}, Case{"PRINT LEFT$(\"HELLO\",2)", "HE"},
        Case{"PRINT RIGHT$(\"HELLO\",2)", "LO"}, Case{"PRINT MID$(\"HELLO\",2,3)", "ELL"},
        Case{"PRINT MID$(\"HELLO\",2)", "ELLO"}, Case{"PRINT LEN(\"HELLO\")", "5"},
        Case{"PRINT CHR$(65);ASC(\"B\")", "A66"}, Case{"PRINT STR$(12)+\"x\"", "12x"},
        Case{"PRINT VAL(\"12.5x\")", "12.5"}, Case{"PRINT INSTR(\"HELLO\",\"L\")", "3"},
        Case{"PRINT UPPER$(\"aB\")", "AB"}, Case{"PRINT HEX$(255)", "FF"},
        Case{"PRINT STRING$(3,\"ab\");SPACE$(2);\"x\"", "aaa  x"}, Case{"PRINT \"A\"<\"B\"", "-1"},
        Case{"PRINT 1,2", "1             2"}, Case{"PRINT \"A\"+1", "Error 13: Type mismatch"},
        Case{"PRINT LEN(1)", "Error 13: Type mismatch"},
        Case{"PRINT ASC(\"\")", "Error 5: Illegal argument"}));

INSTANTIATE_TEST_SUITE_P(
    Statements, Expressions,
    ::testing::Values(
        Case{"A=5:B=A*2:PRINT B", "10"}, Case{"LET A$=\"x\":PRINT A$;A$", "xx"},
        Case{"A%=2.6:PRINT A%", "3"}, Case{"DIM A(20):A(20)=4:PRINT A(20)", "4"},
        Case{"A$(3)=\"q\":PRINT A$(3);A$(4);\".\"", "q."},
        Case{"IF 1 THEN PRINT \"Y\" ELSE PRINT \"N\"", "Y"},
        Case{"IF 0 THEN PRINT \"Y\" ELSE PRINT \"N\"", "N"},
        Case{"IF 1 THEN IF 0 THEN PRINT 1 ELSE PRINT 2", "2"},
        Case{"FOR I=3 TO 1 STEP -1:PRINT I;:NEXT:PRINT", "321"},
        Case{"FOR I=1 TO 0:PRINT I:NEXT:PRINT \"D\"", "D"},
        Case{"FOR I=1 TO 2:FOR J=1 TO 2:PRINT I*J;:NEXT J:NEXT I:PRINT", "1224"},
        Case{"I=0:WHILE I<3:I=I+1:PRINT I;:WEND:PRINT", "123"}, Case{"? 1", "1"},
        Case{"PRINT 1 ' remark", "1"}, Case{"A(11)=1", "Error 9: Subscript out of range"},
        Case{"NEXT", "Error 23: NEXT without FOR"},
        Case{"RETURN", "Error 22: RETURN without GOSUB"},
        Case{"FOR I=1 TO 0", "Error 24: FOR without NEXT"},
        Case{"WEND", "Error 25: WEND without WHILE"},
        Case{"GOTO 100", "Error 8: Undefined line number"},
        Case{"DIM A(5):DIM A(5)", "Error 10: Array already dimensioned"},
        Case{"PRINT (1", "Error 19: Syntax error"}, Case{"FOO", "Error 19: Syntax error"},
        Case{"PRINT=1", "Error 19: Syntax error"}, Case{"PRINT @", "Error 19: Syntax error"}));

TEST(Programs, RunWithSubroutinesAndJumps) {
    PrinterRig rig;
    rig.Ask("10 GOSUB 100:GOSUB 100");
    rig.Ask("20 ON N GOTO 30,40");
    rig.Ask("30 PRINT \"ONE\":END");
    rig.Ask("40 PRINT \"TWO\"");
    rig.Ask("50 IF N>1 THEN N=0:GOTO 40");
    rig.Ask("60 END");
    rig.Ask("100 N=N+1:RETURN");
    EXPECT_EQ(rig.Lines("RUN"), (std::vector<std::string>{"TWO", "TWO"}));
}

TEST(Programs, TrapTheirErrors) {
    PrinterRig rig;
    rig.Ask("10 ON ERROR GOTO 100");
    rig.Ask("20 PRINT 1/0");
    rig.Ask("30 PRINT \"AFTER\"");
    rig.Ask("40 END");
    rig.Ask("100 PRINT ERR;\" \";ERL");
    rig.Ask("110 RESUME NEXT");
    EXPECT_EQ(rig.Lines("RUN"), (std::vector<std::string>{"11 20", "AFTER"}));
}

TEST(Programs, AskForInput) {
    PrinterRig rig;
    rig.Ask("10 INPUT \"NAME \";A$,N");
    rig.Ask("20 PRINT A$;N+1");
    EXPECT_EQ(rig.Ask("RUN"), "RUN\r\nNAME ");
    EXPECT_EQ(rig.Ask("BOB,41"), "BOB,41\r\nBOB42\r\nOk\r\n");
}

TEST(Programs, ListWithRanges) {
    PrinterRig rig;
    for (const int number : {10, 20, 30})
        rig.Ask(std::to_string(number) + " REM " + std::to_string(number));
    using Listing = std::vector<std::string>;
    EXPECT_EQ(rig.Lines("LIST"), (Listing{"10 REM 10", "20 REM 20", "30 REM 30"}));
    EXPECT_EQ(rig.Lines("LIST 20"), Listing{"20 REM 20"});
    EXPECT_EQ(rig.Lines("LIST 20-"), (Listing{"20 REM 20", "30 REM 30"}));
    EXPECT_EQ(rig.Lines("LIST -20"), (Listing{"10 REM 10", "20 REM 20"}));
    EXPECT_EQ(rig.Lines("LIST 15-25"), Listing{"20 REM 20"});
    rig.Ask("20");
    EXPECT_EQ(rig.Lines("LIST"), (Listing{"10 REM 10", "30 REM 30"}));
}

TEST(Programs, AreSavedLoadedAndMerged) {
    PrinterRig rig;
    rig.Ask("10 PRINT \"A\"");
    rig.Ask("20 PRINT \"B\"");
    EXPECT_TRUE(rig.Lines("SAVE\"tmp:P\",L").empty());
    EXPECT_TRUE(rig.Lines("NEW").empty());
    rig.Ask("20 PRINT \"C\"");
    rig.Ask("30 PRINT \"D\"");
    EXPECT_TRUE(rig.Lines("MERGE\"tmp:P\"").empty());
    EXPECT_EQ(rig.Lines("RUN"), (std::vector<std::string>{"A", "B", "D"}));
    EXPECT_TRUE(rig.Lines("LOAD \"tmp:P\"").empty());
    EXPECT_EQ(rig.Lines("RUN"), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(rig.Line("MERGE\"tmp:NONE\""), "Error 1022: File not found");
}

TEST(Programs, TakeWorkingMemory) {
    PrinterRig rig("R7C");
    EXPECT_EQ(rig.Line("PRINT FRE(0)"), "32768");
    PrinterRig other("R7D");
    const int before = std::stoi(other.Line("PRINT FRE(0)"));
    other.Ask("10 PRINT \"HELLO\"");
    EXPECT_EQ(std::stoi(other.Line("PRINT FRE(0)")), before - 17);
}

TEST(Programs, MemoryThatIsFullRefuses) {
    PrinterRig rig("R7D");
    rig.Ask("SYSVAR(18)=8:SYSVAR(19)=2");
    const std::string text = " REM " + std::string(990, 'x');
    std::string reply;
    for (int number = 1; number < 100 && reply.empty(); ++number)
        reply = rig.Ask(std::to_string(number) + text);
    EXPECT_EQ(reply.substr(0, 16), "Error 7 in line ");
    EXPECT_EQ(rig.Ask("DIM A(90000)"), "Error 7: Out of memory\r\n");
    EXPECT_EQ(rig.Ask("NEW:PRINT 1"), "1\r\n");
}

TEST(Programs, NestingHasALimit) {
    PrinterRig rig;
    rig.Ask("SYSVAR(19)=2");
    const std::string opened(500, '(');
    EXPECT_EQ(rig.Line("PRINT " + opened), "Error 16: Nesting too deep");
    EXPECT_EQ(rig.Line("PRINT " + std::string(500, '-') + "1"), "Error 16: Nesting too deep");
    std::string ifs;
    for (int i = 0; i < 60; ++i)
        ifs += "IF 1 THEN ";
    EXPECT_EQ(rig.Line(ifs + "PRINT 1"), "Error 16: Nesting too deep");
    std::string sum = "1";
    for (int i = 0; i < 450; ++i)
        sum += "+1";
    EXPECT_EQ(rig.Line("PRINT " + sum), "Error 16: Nesting too deep");
    rig.Ask("10 GOSUB 10");
    EXPECT_EQ(rig.Line("RUN"), "Error 16 in line 10: Nesting too deep");
}

TEST(Programs, EndlessOutputWaitsForTheHost) {
    PrinterRig rig;
    rig.Ask("10 PRINT \"0123456789\":GOTO 10");
    rig.Send("RUN\r");
    for (int slice = 0; slice < 1000; ++slice)
        rig.Printer().Advance(rig.Now());
    const std::string taken = rig.Printer().ToHost(rig.Now(), 1 << 30);
    EXPECT_LT(taken.size(), 600'000U);
    EXPECT_GT(taken.size(), 200'000U);
}

TEST(Programs, AMillionRoundsEnd) {
    PrinterRig rig;
    rig.Ask("10 FOR I=1 TO 1000000:A=A+I:NEXT");
    rig.Ask("20 PRINT A");
    EXPECT_EQ(rig.Line("RUN"), "500000500000");
}

} // namespace
} // namespace qncomm::testing

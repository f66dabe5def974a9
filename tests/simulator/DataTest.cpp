// Values that stand in the program.
#include "PrinterRig.h"

namespace qncomm::testing {
namespace {

using Lines = std::vector<std::string>;

/// Types a program, numbered in tens, and returns what it prints.
Lines Printed(const Lines& program) {
    PrinterRig rig;
    rig.Ask("SYSVAR(19)=2");
    for (std::size_t i = 0; i < program.size(); ++i)
        rig.Ask(std::to_string(10 * (i + 1)) + " " + program[i]);
    return rig.Lines("RUN");
}

struct Items {
    std::string_view data;
    std::string_view read; ///< variables
    std::string_view shown;
    std::string_view printed;
};

class Data : public ::testing::TestWithParam<Items> {};

TEST_P(Data, IsReadAsItWasWritten) {
    const Items& items = GetParam();
    EXPECT_EQ(Printed({"DATA" + std::string(items.data), "READ " + std::string(items.read),
                       "PRINT " + std::string(items.shown)}),
              Lines{std::string(items.printed)});
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, Data,
    ::testing::Values(Items{" 5", "A", "A", "5"}, Items{"5,6", "A,B", "A*10+B", "56"},
                      Items{" -1.5 , +2E3", "A,B", "A;\" \";B", "-1.5 2000"},
                      Items{" &HfF", "A", "A", "255"}, Items{" 2.6", "A%", "A%", "3"},
                      Items{" 1,,3", "A,B,C", "A;B;C", "103"}, Items{" 1,", "A,B", "A;B", "10"},
                      Items{"", "A", "A", "0"}, Items{" 7,8", "A(2),A(3)", "A(2);A(3)", "78"},
                      Items{" 3", "SYSVAR(40)", "SYSVAR(40)", "3"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, Data,
    ::testing::Values(
        Items{" \"A,B:C\"", "A$", "A$", "A,B:C"},
        Items{" two words , x", "A$,B$", "A$;\".\";B$", "two words.x"},
        Items{" 007", "A$", "A$", "007"}, Items{" \" x \"", "A$", "A$;\".\"", " x ."},
        Items{" it's, @home", "A$,B$", "A$;B$", "it's@home"}, Items{" 1E999", "A$", "A$", "1E999"},
        Items{" A ELSE B", "A$", "A$", "A ELSE B"}, Items{" one: A=4", "A$", "A$;A", "one4"},
        Items{" \"open", "A$", "A$", "open"}, Items{" ,", "A$,B$", "\"<\";A$;B$;\">\"", "<>"},
        Items{" 6 in \"", "A$", "A$", "6 in \""}));

INSTANTIATE_TEST_SUITE_P(
    Faults, Data,
    ::testing::Values(Items{" 5", "A,B", "A", "Error 4 in line 20: Out of data"},
                      Items{" 5,x", "A,B", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" \"5\"", "A", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" 5x", "A", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" - 5", "A", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" inf", "A", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" &H", "A", "A", "Error 13 in line 20: Type mismatch"},
                      Items{" 1E12", "A%", "A%", "Error 6 in line 20: Overflow"},
                      Items{" 1", "A(11)", "A", "Error 9 in line 20: Subscript out of range"},
                      Items{" \"a\" b", "A$", "A$", "Error 19 in line 10: Syntax error"}));

TEST(Programs, ReadDataFromWhereverItStands) {
    EXPECT_EQ(Printed({"READ A,B,C:PRINT A;B;C:END", "PRINT 9:DATA 1:DATA 2", "IF 0 THEN DATA 3"}),
              Lines{"123"});
}

TEST(Programs, RestoreGoesBackToTheFirstItemOrToALine) {
    EXPECT_EQ(Printed({"READ A,B:RESTORE:READ C:PRINT A;B;C", "RESTORE 50:READ A:PRINT A",
                       "RESTORE 40:READ A:PRINT A:END", "REM the items after this line are meant",
                       "DATA 1,2", "DATA 3"}),
              (Lines{"121", "1", "1"}));
    EXPECT_EQ(Printed({"DATA 1", "RESTORE 15"}),
              Lines{"Error 8 in line 20: Undefined line number"});
}

TEST(Programs, ReadAnItemAgainThatDidNotFit) {
    EXPECT_EQ(Printed({"ON ERROR GOTO 50", "DATA 1,two", "READ A,B", "END",
                       "PRINT ERR:READ A$:PRINT A;A$:RESUME NEXT"}),
              (Lines{"13", "1two"}));
}

TEST(Programs, EachRunReadsFromTheFirstItem) {
    PrinterRig rig;
    rig.Ask("10 DATA 1,2");
    rig.Ask("20 READ A:PRINT A");
    EXPECT_EQ(rig.Line("RUN"), "1");
    EXPECT_EQ(rig.Line("RUN"), "1");
    // What is typed goes on from there, until the program is another one.
    EXPECT_EQ(rig.Line("READ B:PRINT B"), "2");
    EXPECT_EQ(rig.Line("READ B"), "Error 4: Out of data");
    EXPECT_TRUE(rig.Lines("RESTORE 10").empty());
    EXPECT_EQ(rig.Line("READ B:PRINT B"), "1");
}

TEST(Programs, AnotherProgramIsReadFromItsFirstItem) {
    PrinterRig rig;
    rig.Ask("10 DATA 1,2");
    EXPECT_EQ(rig.Line("READ A,B:PRINT A;B"), "12");
    rig.Ask("5 DATA 7");
    EXPECT_EQ(rig.Line("READ A:PRINT A"), "7");
    EXPECT_EQ(rig.Line("RESTORE 10:READ A:PRINT A"), "1");
    EXPECT_EQ(rig.Line("RESTORE 11"), "Error 8: Undefined line number");
    rig.Ask("NEW");
    EXPECT_EQ(rig.Line("READ A"), "Error 4: Out of data");
    EXPECT_TRUE(rig.Lines("DATA 5").empty());
    EXPECT_EQ(rig.Line("READ A"), "Error 4: Out of data") << "what is typed has no items";
    rig.Ask("10 DATA 1");
    rig.Ask("20 GOTO 99");
    EXPECT_EQ(rig.Line("READ A"), "Error 8: Undefined line number") << "the program does not read";
}

TEST(Programs, RemarksHoldAnyCharacters) {
    EXPECT_EQ(Printed({"REM @ 50 mm \"wide", "' \xE9t\xE9 #1", "PRINT 1 ' & more"}), Lines{"1"});
}

} // namespace
} // namespace qncomm::testing

#include "CaseFile.h"

#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(CaseFile, IsReadLineByLine) {
    const TerminalCases read = ReadCases("a.txt", "# a comment\n"
                                                  "case First\n"
                                                  "  send \"a\\r\\n \\e[2C # \\\"\\\\\\x00\"\n"
                                                  "hex 1b 5B3143\n"
                                                  "row \"a  \"\n"
                                                  "row \"\"\n"
                                                  "cursor 2 4\n"
                                                  "\r\n"
                                                  "case Second\r\n"
                                                  "size 24 80\r\n"
                                                  "send \"b\"\r\n"
                                                  "cursor 24 80");
    ASSERT_THAT(read.mistakes, IsEmpty());
    ASSERT_EQ(read.cases.size(), 2U);
    const TerminalCase& first = read.cases[0];
    EXPECT_EQ(first.name, "First");
    EXPECT_EQ(first.where, "a.txt:2");
    EXPECT_EQ(first.bytes, std::string("a\r\n \x1B[2C # \"\\\0\x1B[1C", 18));
    EXPECT_THAT(first.shown, ElementsAre("a", ""));
    EXPECT_EQ(first.rows, 5);
    EXPECT_EQ(first.columns, 10);
    EXPECT_EQ(first.cursorRow, 2);
    EXPECT_EQ(first.cursorColumn, 4);
    EXPECT_EQ(read.cases[1].where, "a.txt:9");
    EXPECT_EQ(read.cases[1].rows, 24);
    EXPECT_EQ(read.cases[1].columns, 80);
}

/// What is objected to in a case of that line, whose others are without mistakes.
std::vector<std::string> MistakesOf(std::string_view line) {
    const std::string text =
        "case A\nsend \"a\"\nrow \"a\"\n" + std::string(line) + "\ncursor 1 2\n";
    const TerminalCases read = ReadCases("a.txt", text);
    EXPECT_THAT(read.cases, IsEmpty()) << "a mistake spoils its case";
    return read.mistakes;
}

TEST(CaseFile, TellsTheLineOfAMistakeAndWhatIsWrong) {
    struct Row {
        std::string_view line;
        std::string_view said;
    };
    const std::vector<Row> rows{
        {"sned \"a\"", "unknown word \"sned\""},
        {"send a", "expected a text in quotes"},
        {"send \"a", "expected a text in quotes"},
        {"send \"a\"b\"", "write a quote inside of a text as \\\""},
        {"send \"\\q\"", "no such escape"},
        {"send \"a\\\"", "no such escape"},
        {"send \"\\x1\"", "two hexadecimal digits"},
        {"send \"\\xG1\"", "two hexadecimal digits"},
        {"send \"\xE4\"", "write this character as \\xHH"},
        {"hex 1b5", "two hexadecimal digits"},
        {"hex 1b zz", "two hexadecimal digits"},
        {"row \"01234567890\"", "longer than the screen's 10 columns"},
        {"size 24 80", "the size stands before"},
        {"cursor 6 1", "a number from 1 to 5"},
        {"cursor 1 11", "a number from 1 to 10"},
        {"cursor 1 x", "a number from 1 to 10"},
        {"cursor 1 1 1", "expected two numbers"},
    };
    for (const Row& row : rows)
        EXPECT_THAT(MistakesOf(row.line),
                    ElementsAre(AllOf(HasSubstr("a.txt:4: "), HasSubstr(std::string(row.said)))))
            << row.line;
}

TEST(CaseFile, TellsWhatACaseLacks) {
    const auto mistakes = [](std::string_view text) { return ReadCases("a.txt", text).mistakes; };
    EXPECT_THAT(mistakes("\ncase A\ncursor 1 1\n"), ElementsAre("a.txt:2: the case sends nothing"));
    EXPECT_THAT(mistakes("case A\nsend \"a\"\n"),
                ElementsAre("a.txt:1: the case does not say where the cursor is"));
    EXPECT_THAT(mistakes("send \"a\"\n"), ElementsAre("a.txt:1: the file starts with a case"));
    EXPECT_THAT(mistakes("case two words\n"),
                ElementsAre("a.txt:1: a case has a name of letters and digits"));
    EXPECT_THAT(mistakes("case A\nsize 1 9\nsend \"a\"\nrow \"a\"\nrow \"b\"\ncursor 1 1\n"),
                ElementsAre("a.txt:5: the screen has only 1 rows"));
}

TEST(CaseFile, OneMistakeLeavesTheOtherCases) {
    const TerminalCases read = ReadCases("a.txt", "case A\nsend a\ncursor 1 1\n"
                                                  "case B\nsend \"b\"\ncursor 1 2\n");
    EXPECT_EQ(read.mistakes.size(), 1U);
    ASSERT_EQ(read.cases.size(), 1U);
    EXPECT_EQ(read.cases[0].name, "B");
}

TEST(CaseFolder, IsReadFileByFileAndEachNameStandsOnce) {
    const ScratchFolder folder;
    folder.Write("b.txt", "case A\nsend \"a\"\ncursor 1 2\ncase B\nsend \"b\"\ncursor 1 2\n");
    folder.Write("a.txt", "# first\ncase A\nsend \"a\"\ncursor 1 2\n");
    folder.Write("README.md", "no cases");
    const TerminalCases read = ReadCaseFolder(folder.Path());
    ASSERT_EQ(read.cases.size(), 2U);
    EXPECT_EQ(read.cases[0].where, "a.txt:2");
    EXPECT_EQ(read.cases[1].name, "B");
    EXPECT_THAT(read.mistakes, ElementsAre("b.txt:1: A is also a case at a.txt:2"));
}

} // namespace
} // namespace qncomm::testing

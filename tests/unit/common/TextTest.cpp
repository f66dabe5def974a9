#include "common/Text.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

using Pieces = std::vector<std::string>;

TEST(Text, CaseIsFoldedForLettersOfAsciiOnly) {
    EXPECT_EQ(UpperCase("az\xE4Z9"), "AZ\xE4Z9");
    EXPECT_EQ(LowerCase("AZ\xC4z9"), "az\xC4z9");
    EXPECT_TRUE(EqualNoCase("FlowControl", "Flowcontrol"));
    EXPECT_FALSE(EqualNoCase("Flow", "Flowcontrol"));
}

TEST(Text, TrimTakesBlanksOnly) {
    EXPECT_EQ(Trim("  a b "), "a b");
    EXPECT_EQ(Trim("\ta "), "\ta");
    EXPECT_EQ(Trim("   "), "");
}

TEST(Text, ReplaceAllGoesOnBehindWhatItPutIn) {
    EXPECT_EQ(ReplaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(ReplaceAll("abc", "x", "y"), "abc");
}

TEST(Text, SplittersKeepOrDropEmptyPieces) {
    EXPECT_EQ(SplitNonEmpty("a\r\n\r\n \r\nb\r\n", CrLf), (Pieces{"a", " ", "b"}));
    EXPECT_EQ(SplitKeepEmpty("a\r\n\r\nb\r\n", CrLf), (Pieces{"a", "", "b", ""}));
    EXPECT_EQ(SplitNonEmpty("", CrLf), Pieces{});
    EXPECT_EQ(SplitKeepEmpty("", CrLf), Pieces{});
}

TEST(Text, RunsOfBlanksAreOneSeparator) {
    EXPECT_EQ(SplitAtBlankRuns("A B.PRG    123   C  4", 11), (Pieces{"A B.PRG", "123", "C", "4"}));
    EXPECT_EQ(SplitAtBlankRuns("one", 11), Pieces{"one"});
    EXPECT_EQ(SplitAtBlankRuns("1  2  3  4", 3), (Pieces{"1", "2", "3  4"}));
    EXPECT_EQ(SplitAtBlankRuns("a  ", 11), (Pieces{"a", ""}));
}

TEST(Text, CollapseSpacesWorksOnBlanksOnly) {
    EXPECT_EQ(CollapseSpaces("  a   b\t\tc "), " a b\t\tc ");
    EXPECT_EQ(CollapseSpaces(""), "");
}

TEST(Text, EveryLineEndBecomesCrLf) {
    EXPECT_EQ(NormalizeLineEnds("a\rb\nc\r\nd"), "a\r\nb\r\nc\r\nd");
    EXPECT_EQ(NormalizeLineEnds("\n\n"), "\r\n");
    EXPECT_EQ(NormalizeLineEnds("\r\n\r\n"), "\r\n\r\n");
    EXPECT_EQ(NormalizeLineEnds("\n\n\n"), "\r\n\r\n");
    EXPECT_EQ(NormalizeLineEnds(std::string_view("\0\x1A", 2)), std::string_view("\0\x1A", 2));
}

TEST(Text, Strip8thBitKeepsSevenBits) {
    EXPECT_EQ(Strip8thBit("\xC8\xCFk"), "HOk");
}

TEST(Text, FileNameIsWhatFollowsTheLastSlash) {
    EXPECT_EQ(FileNameOf("/a/b.pcx"), "b.pcx");
    EXPECT_EQ(FileNameOf("c:b.pcx"), "c:b.pcx");
    EXPECT_EQ(FileNameOf("b"), "b");
    EXPECT_EQ(FileNameOf("a/"), "");
}

} // namespace
} // namespace qncomm

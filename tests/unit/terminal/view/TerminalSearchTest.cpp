#include "terminal/view/TerminalSearch.h"

#include "TextRig.h"

#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

constexpr SearchDirection Back = SearchDirection::Back;
constexpr SearchDirection Forward = SearchDirection::Forward;

TEST(TerminalSearch, GoesOnFromAPlaceAndRoundTheEnds) {
    TextRig rig(5, 20);
    rig.ReceiveLines(1, 30);
    const auto lineOf = [&](TextPosition from, SearchDirection direction) {
        const auto found = FindText(rig.text, "line 2", from, direction);
        return found ? rig.text.Line(found->from.line).text : "nothing";
    };
    EXPECT_EQ(lineOf({30, 0}, Back), "line 29");
    EXPECT_EQ(lineOf({28, 0}, Back), "line 28") << "not the place itself";
    EXPECT_EQ(lineOf({19, 0}, Back), "line 2");
    EXPECT_EQ(lineOf({1, 0}, Back), "line 29") << "on at the other end";
    EXPECT_EQ(lineOf({1, 0}, Forward), "line 20");
    EXPECT_EQ(lineOf({28, 0}, Forward), "line 2");
}

TEST(TerminalSearch, TellsBothEndsOfWhatItFinds) {
    TextRig rig(5, 20);
    rig.Receive("one\r\n  two three");
    const auto found = FindText(rig.text, "two", {0, 0}, Forward);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->from, (TextPosition{1, 2}));
    EXPECT_EQ(found->to, (TextPosition{1, 5}));
}

TEST(TerminalSearch, TakesLettersInEitherCaseThoseOfTheUpperHalfToo) {
    TextRig rig(5, 20);
    rig.Receive("Gr\xF6\xDF"
                "e \x8A");
    EXPECT_TRUE(FindText(rig.text,
                         "GR\xD6\xDF"
                         "E",
                         {0, 0}, Back));
    EXPECT_TRUE(FindText(rig.text, "\x9A", {0, 0}, Forward));
    EXPECT_FALSE(FindText(rig.text, "grosse", {0, 0}, Forward));
}

TEST(TerminalSearch, ReadsALineBrokenForWantOfColumnsAsOne) {
    TextRig rig(5, 10);
    rig.Receive("12345 across 67890\r\nacross");
    const auto found = FindText(rig.text, "ACROSS", {2, 3}, Forward);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->from, (TextPosition{0, 6}));
    EXPECT_EQ(found->to, (TextPosition{1, 2}));
}

TEST(TerminalSearch, TriesThePlaceItselfLast) {
    TextRig rig(5, 20);
    rig.Receive("only one");
    for (const SearchDirection direction : {Back, Forward}) {
        const auto found = FindText(rig.text, "one", {0, 5}, direction);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->from, (TextPosition{0, 5}));
    }
}

TEST(TerminalSearch, FindsNothingWhereNothingStands) {
    TextRig rig(5, 20);
    rig.ReceiveLines(1, 50);
    EXPECT_FALSE(FindText(rig.text, "nowhere", {3, 2}, Back));
    EXPECT_FALSE(FindText(rig.text, "nowhere", {3, 2}, Forward));
    EXPECT_FALSE(FindText(rig.text, "", {3, 2}, Forward));
    EXPECT_FALSE(FindText(rig.text, "line 1\r\nline 2", {0, 0}, Forward)) << "two lines";
}

} // namespace
} // namespace qncomm::testing

#include "terminal/view/TerminalScroll.h"

#include "TextRig.h"

#include <gtest/gtest.h>

#include <limits>

namespace qncomm::testing {
namespace {

/// A part of a terminal in view that is told of each change, as a face does it.
class ScrollRig : public TextRig {
  public:
    ScrollRig(std::int16_t rows, std::int16_t columns, std::size_t scrollbackLines = 1000)
        : TextRig(rows, columns, scrollbackLines) {
        scroll.SetSize(4, 10);
        (void)Update();
    }

    /// Whether rows have become other lines without leaving into the scroll-back.
    bool Update() { return scroll.Update(grid.TakeDamage()); }
    /// Text from the line.
    bool Shown(std::string_view bytes) {
        Receive(bytes);
        return Update();
    }
    /// Numbered lines from the line.
    void ShowLines(int first, int count) {
        ReceiveLines(first, count);
        (void)Update();
    }
    std::string TopText() const { return text.Line(scroll.Top()).text; }

    TerminalScroll scroll{text};
};

TEST(TerminalScroll, FollowsTheTextToItsEnd) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 3);
    EXPECT_EQ(rig.TopText(), "line 1");
    rig.ShowLines(4, 30);
    EXPECT_EQ(rig.TopText(), "line 31");
    EXPECT_TRUE(rig.scroll.Follows());
    EXPECT_TRUE(rig.scroll.Shows(rig.text.CursorLine()));
    EXPECT_EQ(rig.scroll.ContentEnd(), rig.text.CursorLine() + 1);
}

TEST(TerminalScroll, StaysWhereTheUserLooksBackWhileMoreComes) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    rig.scroll.ScrollBy(-5);
    const std::string shown = rig.TopText();
    EXPECT_FALSE(rig.scroll.Follows());
    rig.ShowLines(31, 200);
    EXPECT_EQ(rig.TopText(), shown);
}

TEST(TerminalScroll, FollowsAgainAtTheEndAndWhenAKeyIsTyped) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    rig.scroll.ScrollBy(-5);
    rig.scroll.ScrollBy(4);
    EXPECT_FALSE(rig.scroll.Follows());
    rig.scroll.ScrollBy(1);
    EXPECT_TRUE(rig.scroll.Follows());
    rig.scroll.ScrollBy(-9);
    rig.scroll.KeyTyped();
    EXPECT_TRUE(rig.scroll.Follows());
    EXPECT_EQ(rig.scroll.Top(), rig.scroll.LastTop());
    rig.scroll.ScrollBy(-9);
    rig.scroll.ScrollToEnd();
    EXPECT_TRUE(rig.scroll.Follows());
}

TEST(TerminalScroll, StopsAtTheOldestLineAndAtTheEnd) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    rig.scroll.ScrollBy(-1000);
    EXPECT_EQ(rig.scroll.Top(), 0U);
    rig.scroll.ScrollBy(1000);
    EXPECT_EQ(rig.scroll.Top(), rig.scroll.LastTop());
    rig.scroll.ScrollTo(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(rig.scroll.Top(), rig.scroll.LastTop());
}

TEST(TerminalScroll, ALineThatIsNoLongerKeptGivesWayToTheOldestThatIs) {
    ScrollRig rig(4, 40, 20);
    rig.ShowLines(1, 20);
    rig.scroll.ScrollTo(3);
    EXPECT_EQ(rig.TopText(), "line 4");
    rig.ShowLines(21, 20);
    EXPECT_EQ(rig.scroll.Top(), rig.text.Begin());
    EXPECT_FALSE(rig.scroll.Follows());
}

TEST(TerminalScroll, PagesOverlapByOneRow) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    const std::uint64_t end = rig.scroll.Top();
    rig.scroll.PageBy(-2);
    EXPECT_EQ(rig.scroll.Top(), end - 6);
    rig.scroll.PageBy(1);
    EXPECT_EQ(rig.scroll.Top(), end - 3);
    rig.scroll.SetSize(1, 10);
    const std::uint64_t top = rig.scroll.Top();
    rig.scroll.PageBy(-1);
    EXPECT_EQ(rig.scroll.Top(), top - 1) << "also where there is room for a single row";
}

TEST(TerminalScroll, AClearedScreenIsShownFromItsFirstRow) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    (void)rig.Shown("\x1B[2J\x1B[Hfresh");
    EXPECT_EQ(rig.TopText(), "fresh");
    EXPECT_EQ(rig.scroll.ContentEnd(), rig.scroll.Top() + 1);
    rig.scroll.ScrollBy(-1);
    EXPECT_EQ(rig.TopText(), "line 21") << "what had scrolled off is kept";
    rig.scroll.ScrollBy(1);
    EXPECT_EQ(rig.TopText(), "fresh");
}

TEST(TerminalScroll, TellsWhenRowsHaveBecomeOtherLinesWithoutScrolling) {
    ScrollRig rig(10, 40);
    EXPECT_FALSE(rig.Shown("one\r\ntwo"));
    rig.ReceiveLines(1, 9);
    EXPECT_FALSE(rig.Update()) << "one row has scrolled, and is said to";
    rig.ReceiveLines(10, 30);
    EXPECT_TRUE(rig.Update()) << "more lines have gone than the screen has rows";
}

TEST(TerminalScroll, ALineIsBroughtIntoViewOnlyWhenItIsNotThere) {
    ScrollRig rig(10, 40);
    rig.ShowLines(1, 30);
    const std::uint64_t top = rig.scroll.Top();
    rig.scroll.ScrollToLine(top + 3);
    EXPECT_EQ(rig.scroll.Top(), top);
    rig.scroll.ScrollToLine(12);
    EXPECT_EQ(rig.scroll.Top(), 10U) << "in the middle";
    rig.scroll.ScrollToLine(1);
    EXPECT_EQ(rig.scroll.Top(), 0U);
}

TEST(TerminalScroll, ShowsTheRowThatTheLowerEdgeCuts) {
    ScrollRig rig(10, 40);
    EXPECT_TRUE(rig.scroll.Shows(0));
    EXPECT_TRUE(rig.scroll.Shows(4));
    EXPECT_FALSE(rig.scroll.Shows(5));
}

TEST(TerminalScroll, OutputDoesNotMoveItSidewaysAndTypingDoes) {
    ScrollRig rig(10, 40);
    (void)rig.Shown("a line that is longer than ten");
    EXPECT_EQ(rig.scroll.Left(), 0U);
    rig.scroll.KeyTyped();
    (void)rig.Shown("x");
    EXPECT_EQ(rig.scroll.Left(), 26U) << "the cursor, at column 31, in the middle";
    (void)rig.Shown("y");
    EXPECT_EQ(rig.scroll.Left(), 26U) << "it is in view";
    (void)rig.Shown("\r\n");
    EXPECT_EQ(rig.scroll.Left(), 0U) << "the next line starts at the left edge";
    (void)rig.Shown("another line that is longer");
    EXPECT_EQ(rig.scroll.Left(), 0U) << "and this one nobody typed";
}

TEST(TerminalScroll, SidewaysStopsWhereTheTextEnds) {
    ScrollRig rig(10, 40);
    (void)rig.Shown("0123456789abcdef");
    EXPECT_EQ(rig.scroll.LastLeft(), 6U);
    rig.scroll.ScrollColumnsBy(99);
    EXPECT_EQ(rig.scroll.Left(), 6U);
    rig.scroll.ScrollColumnsBy(-2);
    EXPECT_EQ(rig.scroll.Left(), 4U);
    rig.scroll.ScrollColumnsBy(-99);
    EXPECT_EQ(rig.scroll.Left(), 0U);
    rig.scroll.ScrollToColumn(20);
    EXPECT_EQ(rig.scroll.LastLeft(), 20U) << "where it stands it can stand";
}

TEST(TerminalScroll, ColumnsAreBroughtIntoViewFromTheLeftEdgeWhereTheyFit) {
    ScrollRig rig(10, 40);
    (void)rig.Shown("0123456789abcdef");
    rig.scroll.ShowColumns(12, 15);
    EXPECT_EQ(rig.scroll.Left(), 12U);
    rig.scroll.ShowColumns(13, 16);
    EXPECT_EQ(rig.scroll.Left(), 12U) << "they are in view";
    rig.scroll.ShowColumns(4, 8);
    EXPECT_EQ(rig.scroll.Left(), 0U);
}

TEST(TerminalScroll, APointIsTheNearestPlaceInTheText) {
    ScrollRig rig(10, 40);
    (void)rig.Shown("0123456789\r\nsecond");
    EXPECT_EQ(rig.scroll.PositionAt(0.5, 2.4, true), (TextPosition{0, 2}));
    EXPECT_EQ(rig.scroll.PositionAt(0.5, 2.6, true), (TextPosition{0, 3}));
    EXPECT_EQ(rig.scroll.PositionAt(0.5, 2.6, false), (TextPosition{0, 2}));
    EXPECT_EQ(rig.scroll.PositionAt(-3, -3, true), (TextPosition{0, 0}));
    EXPECT_EQ(rig.scroll.PositionAt(9, 99, false), (TextPosition{1, 40})) << "below the text";
    rig.ShowLines(1, 30);
    rig.scroll.ScrollToColumn(3);
    EXPECT_EQ(rig.scroll.PositionAt(1, 1, true), (TextPosition{rig.scroll.Top() + 1, 4}));
}

TEST(TerminalScroll, TheTextEndsWhereAnythingStandsOrTheCursorIs) {
    ScrollRig rig(10, 40);
    (void)rig.Shown("one\x1B[6;1Hsix\x1B[H");
    EXPECT_EQ(rig.scroll.ContentEnd(), 6U);
    EXPECT_EQ(rig.scroll.TextEnd(), (TextPosition{5, 3}));
    (void)rig.Shown("\x1B[6;1H\x1B[K\x1B[H");
    EXPECT_EQ(rig.scroll.ContentEnd(), 1U);
    (void)rig.Shown("\x1B[9;1H");
    EXPECT_EQ(rig.scroll.ContentEnd(), 9U);
}

TEST(TerminalScroll, TakesRoomForLessThanARowAsOne) {
    ScrollRig rig(10, 40);
    rig.scroll.SetSize(0, -3);
    EXPECT_EQ(rig.scroll.Rows(), 1);
    EXPECT_EQ(rig.scroll.Columns(), 1);
}

} // namespace
} // namespace qncomm::testing

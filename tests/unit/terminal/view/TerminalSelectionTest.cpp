#include "terminal/view/TerminalSelection.h"

#include "TextRig.h"

#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using Kind = TerminalSelection::Kind;

/// What a drag from one place to another marks.
TerminalSelection Dragged(const TerminalText& text, TextPosition from, TextPosition to, Kind kind) {
    TerminalSelection selection;
    selection.Start(text, from, kind);
    selection.ExtendTo(text, to);
    return selection;
}

TEST(TerminalSelection, HasNothingUntilItIsStartedAndAfterItIsCleared) {
    TextRig rig(3, 20);
    rig.Receive("abc");
    TerminalSelection selection;
    EXPECT_TRUE(selection.Empty());
    EXPECT_TRUE(selection.Untouched());
    selection.Start(rig.text, {0, 1}, Kind::Cells);
    EXPECT_TRUE(selection.Empty());
    EXPECT_FALSE(selection.Untouched());
    selection.Clear();
    EXPECT_TRUE(selection.Untouched());
    EXPECT_EQ(selection.Text(rig.text), "");
}

TEST(TerminalSelection, MarksFromCellToCellAcrossLinesWithoutTheBlanksAtTheirEnds) {
    TextRig rig(3, 20);
    rig.Receive("first line   \r\nsecond line");
    EXPECT_EQ(Dragged(rig.text, {0, 6}, {1, 6}, Kind::Cells).Text(rig.text), "line\r\nsecond");
    EXPECT_EQ(Dragged(rig.text, {1, 6}, {0, 6}, Kind::Cells).Text(rig.text), "line\r\nsecond")
        << "also upwards";
    EXPECT_EQ(Dragged(rig.text, {0, 10}, {0, 13}, Kind::Cells).Text(rig.text), "");
}

TEST(TerminalSelection, AWordIsWhatANameOfAFileIsMadeOf) {
    TextRig rig(3, 40);
    rig.Receive("FILES \"ram:name.prg\" now == 5\xBD");
    const auto wordAt = [&](std::size_t column) {
        return Dragged(rig.text, {0, column}, {0, column}, Kind::Words).Text(rig.text);
    };
    EXPECT_EQ(wordAt(10), "ram:name.prg");
    EXPECT_EQ(wordAt(0), "FILES");
    EXPECT_EQ(wordAt(26), "==");
    EXPECT_EQ(wordAt(28), "5\xBD");
    EXPECT_EQ(wordAt(35), "") << "behind the text";
}

TEST(TerminalSelection, WordsAndLinesGrowByWholeOnes) {
    TextRig rig(4, 8);
    rig.Receive("one two three\r\nlast");
    EXPECT_EQ(Dragged(rig.text, {0, 5}, {1, 1}, Kind::Words).Text(rig.text), "two three");
    EXPECT_EQ(Dragged(rig.text, {1, 1}, {0, 5}, Kind::Words).Text(rig.text), "two three");
    EXPECT_EQ(Dragged(rig.text, {1, 0}, {1, 0}, Kind::Lines).Text(rig.text), "one two three");
    EXPECT_EQ(Dragged(rig.text, {1, 0}, {2, 1}, Kind::Lines).Text(rig.text),
              "one two three\r\nlast");
}

TEST(TerminalSelection, ARectangleTakesTheSameColumnsOfEachLine) {
    TextRig rig(4, 10);
    rig.Receive("abcdef\r\nghijkl\r\nmnopqr");
    for (const auto& [from, to] : {std::pair{TextPosition{0, 1}, TextPosition{2, 4}},
                                   std::pair{TextPosition{2, 4}, TextPosition{0, 1}},
                                   std::pair{TextPosition{0, 4}, TextPosition{2, 1}}}) {
        const TerminalSelection selection = Dragged(rig.text, from, to, Kind::Block);
        EXPECT_EQ(selection.Text(rig.text), "bcd\r\nhij\r\nnop");
        EXPECT_EQ(selection.From(), (TextPosition{0, 1}));
        EXPECT_EQ(selection.To(), (TextPosition{2, 4}));
    }
    EXPECT_TRUE(Dragged(rig.text, {0, 3}, {2, 3}, Kind::Block).Empty());
}

TEST(TerminalSelection, HowOftenTheButtonWasPressedSaysWhatADragMarks) {
    EXPECT_EQ(TerminalSelection::KindOf(1, false), Kind::Cells);
    EXPECT_EQ(TerminalSelection::KindOf(1, true), Kind::Block);
    EXPECT_EQ(TerminalSelection::KindOf(2, false), Kind::Words);
    EXPECT_EQ(TerminalSelection::KindOf(3, false), Kind::Lines);
    EXPECT_EQ(TerminalSelection::KindOf(3, true), Kind::Lines);
    EXPECT_TRUE(TerminalSelection::IsByCells(Kind::Cells));
    EXPECT_TRUE(TerminalSelection::IsByCells(Kind::Block));
    EXPECT_FALSE(TerminalSelection::IsByCells(Kind::Words));
    EXPECT_FALSE(TerminalSelection::IsByCells(Kind::Lines));
}

TEST(TerminalSelection, MarkReplacesWhatWasMarkedAndIsExtendedFromItsStart) {
    TextRig rig(3, 20);
    rig.Receive("one two three");
    TerminalSelection selection = Dragged(rig.text, {0, 0}, {0, 0}, Kind::Lines);
    selection.Mark({0, 4}, {0, 7});
    EXPECT_EQ(selection.Text(rig.text), "two");
    selection.ExtendTo(rig.text, {0, 9});
    EXPECT_EQ(selection.Text(rig.text), "two t");
}

TEST(TerminalSelection, TellsWhichCellsOfALineAreMarked) {
    TextRig rig(4, 10);
    rig.Receive("abcdef\r\nghijkl\r\nmnopqr");
    const TerminalSelection selection = Dragged(rig.text, {0, 3}, {2, 2}, Kind::Cells);
    const auto on = [&](std::uint64_t line) {
        const auto columns = selection.On(line, 6);
        return std::pair(columns.from, columns.to);
    };
    EXPECT_EQ(on(0), std::pair(std::size_t{3}, std::size_t{6}));
    EXPECT_EQ(on(1), std::pair(std::size_t{0}, std::size_t{6}));
    EXPECT_EQ(on(2), std::pair(std::size_t{0}, std::size_t{2}));
    EXPECT_TRUE(selection.On(3, 6).Empty());
}

TEST(TerminalSelection, OutlivesChangesElsewhereAndNoneOfItsOwnText) {
    TextRig rig(4, 10, 5);
    rig.Receive("one\r\ntwo\r\n");
    (void)rig.grid.TakeDamage();
    const TerminalSelection selection = Dragged(rig.text, {0, 0}, {0, 3}, Kind::Cells);
    const auto outlives = [&](std::string_view bytes, bool renumbered = false) {
        rig.Receive(bytes);
        return selection.Outlives(rig.text, rig.grid.TakeDamage(), renumbered);
    };
    EXPECT_TRUE(outlives("three\r\n"));
    EXPECT_TRUE(outlives("four\r\nfive\r\n")) << "it has scrolled off and is kept";
    EXPECT_EQ(selection.Text(rig.text), "one");
    EXPECT_TRUE(outlives("", true)) << "only the screen's rows have become others";
    EXPECT_FALSE(outlives("6\r\n7\r\n8\r\n9\r\n10\r\n")) << "it is no longer kept";
}

TEST(TerminalSelection, EndsWithTheTextThatItMarks) {
    TextRig rig(4, 10);
    rig.Receive("one\r\ntwo\r\n");
    (void)rig.grid.TakeDamage();
    const TerminalSelection selection = Dragged(rig.text, {1, 0}, {1, 3}, Kind::Cells);
    EXPECT_FALSE(selection.Outlives(rig.text, {}, true)) << "its row is another line now";
    rig.Receive("\x1B[HONE");
    EXPECT_TRUE(selection.Outlives(rig.text, rig.grid.TakeDamage(), false));
    rig.Receive("\x1B[2HTWO");
    EXPECT_FALSE(selection.Outlives(rig.text, rig.grid.TakeDamage(), false));
}

} // namespace
} // namespace qncomm::testing

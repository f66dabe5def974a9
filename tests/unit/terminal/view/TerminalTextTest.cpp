#include "terminal/view/TerminalText.h"

#include "TextRig.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;

TEST(TerminalText, ALineKeepsItsNumberWhenItScrollsOff) {
    TextRig rig(3, 20);
    rig.ReceiveLines(1, 2);
    EXPECT_EQ(rig.text.Line(1).text, "line 2");
    rig.ReceiveLines(3, 8);
    EXPECT_EQ(rig.text.Line(1).text, "line 2");
    EXPECT_EQ(rig.text.Begin(), 0U);
    EXPECT_EQ(rig.text.ScreenBegin(), 8U);
    EXPECT_EQ(rig.text.End(), 11U);
    EXPECT_EQ(rig.text.CursorLine(), 10U);
    EXPECT_EQ(rig.text.Line(11).text, "") << "there is none yet";
}

TEST(TerminalText, CountsColumnsFromZero) {
    TextRig rig(2, 10);
    EXPECT_EQ(rig.text.CursorColumn(), 0U);
    rig.Receive("abc");
    EXPECT_EQ(rig.text.CursorColumn(), 3U);
    EXPECT_EQ(rig.text.Width(), 10U);
}

TEST(TerminalText, ALineThatHoldsOnlyAColourIsNotBlank) {
    TextRig rig(4, 10);
    rig.Receive("   \r\n\x1B[41m\x1B[K\x1B[m\r\nx");
    EXPECT_TRUE(rig.text.IsBlank(0));
    EXPECT_FALSE(rig.text.IsBlank(1));
    EXPECT_FALSE(rig.text.IsBlank(2));
    EXPECT_TRUE(rig.text.IsBlank(3));
}

TEST(TerminalText, LinesBrokenForWantOfColumnsAreOneParagraph) {
    TextRig rig(6, 4);
    rig.Receive("ab\r\ncdefghij\r\nkl");
    for (const std::uint64_t line : {1U, 2U}) {
        const Paragraph paragraph = rig.text.ParagraphAt(line);
        EXPECT_EQ(paragraph.first, 1U);
        EXPECT_EQ(paragraph.Last(), 2U);
        EXPECT_EQ(paragraph.text, "cdefghij");
        EXPECT_THAT(paragraph.starts, ElementsAre(0U, 4U));
    }
    EXPECT_EQ(rig.text.ParagraphAt(0).text, "ab");
}

TEST(TerminalText, OffsetsAndPlacesOfAParagraphMeet) {
    TextRig rig(6, 4);
    rig.Receive("ab\r\ncdefghij\r\nkl");
    const Paragraph paragraph = rig.text.ParagraphAt(1);
    for (std::size_t offset = 0; offset < paragraph.text.size(); ++offset)
        EXPECT_EQ(paragraph.OffsetOf(paragraph.PositionOf(offset)), offset);
    EXPECT_EQ(paragraph.OffsetOf({0, 2}), 0U) << "before it";
    EXPECT_EQ(paragraph.OffsetOf({4, 0}), 8U) << "behind it";
    EXPECT_EQ(paragraph.OffsetOf({1, 99}), 4U) << "beyond the end of its line";
}

TEST(TerminalText, AParagraphIsReadNoFurtherThanAThousandLinesEachWay) {
    TextRig rig(2, 10, 5000);
    rig.Receive(std::string(40'000, 'x'));
    const Paragraph paragraph = rig.text.ParagraphAt(2000);
    EXPECT_EQ(paragraph.first, 1000U);
    EXPECT_EQ(paragraph.Last(), 3000U);
}

} // namespace
} // namespace qncomm::testing

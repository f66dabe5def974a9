#include "terminal/view/ScreenReaderText.h"

#include "TextRig.h"
#include "common/Windows1252.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ReaderScreen ScreenOf(const TextRig& rig) {
    return ReaderScreenOf(rig.text, rig.text.CursorLine() + 1);
}

TEST(ReaderScreen, IsItsLinesWithoutTheBlanksAtTheirEndsButThoseLeftOfTheCursor) {
    TextRig rig(5, 20);
    rig.Receive("first  \r\nOk\r\n> ");
    const ReaderScreen screen = ScreenOf(rig);
    EXPECT_EQ(screen.text, u"first\nOk\n> ");
    EXPECT_EQ(screen.cursor, 11);
    EXPECT_THAT(screen.lineStarts, ElementsAre(0, 6, 9));
}

TEST(ReaderScreen, HasACharacterForEachByte) {
    TextRig rig(5, 20);
    rig.Receive("\x80\xE9");
    EXPECT_EQ(ScreenOf(rig).text, u"\u20AC\u00E9");
}

TEST(ReaderScreen, LinesAreNumberedAsInTheTerminal) {
    TextRig rig(3, 20);
    rig.ReceiveLines(1, 7);
    const ReaderScreen screen = ScreenOf(rig);
    EXPECT_EQ(screen.firstLine, 5U);
    EXPECT_EQ(screen.text, u"line 6\nline 7\n");
}

TEST(ReaderScreen, PlacesAndOffsetsMeet) {
    TextRig rig(3, 20);
    rig.ReceiveLines(1, 7);
    const ReaderScreen screen = ScreenOf(rig);
    for (int offset = 0; offset <= static_cast<int>(screen.text.size()); ++offset)
        EXPECT_EQ(screen.OffsetOf(screen.PositionOf(offset)), offset);
    EXPECT_EQ(screen.OffsetOf({2, 3}), 0) << "above the screen";
    EXPECT_EQ(screen.OffsetOf({5, 99}), 6) << "beyond the end of its line";
    EXPECT_EQ(screen.OffsetOf({99, 0}), 14) << "below the screen";
    EXPECT_EQ(screen.PositionOf(-1), (TextPosition{5, 0}));
    EXPECT_EQ(ReaderScreen{}.PositionOf(3), TextPosition{});
}

/// The steps that a screen reader is told after more text, "+" for what came and "-" for what went.
class Told {
  public:
    std::vector<std::string> After(std::string_view bytes) {
        mRig.Receive(bytes);
        std::vector<std::string> told;
        for (const TextChange& change : mReaders.Follow(ScreenOf(mRig)))
            told.push_back((change.inserted ? "+" : "-") + LineBytesOf(change.text));
        return told;
    }
    int Cursor() const { return mReaders.Cursor(); }

  private:
    TextRig mRig{4, 300};
    ScreenReaderText mReaders;
};

TEST(ScreenReaderText, OutputIsToldAsItComesAndNothingTwice) {
    Told told;
    EXPECT_THAT(told.After("> "), ElementsAre("+> "));
    EXPECT_THAT(told.After("PRINT 1\r\n1\r\n"), ElementsAre("+PRINT 1\n1\n"));
    EXPECT_THAT(told.After("Ok\r\n"), ElementsAre("+Ok\n"));
    EXPECT_THAT(told.After("more"), ElementsAre("+more"));
    EXPECT_THAT(told.After("\r\nnext"), ElementsAre("-> PRINT 1\n", "+\nnext"));
    EXPECT_THAT(told.After("\b\b\b\b\x1B[K"), ElementsAre("-next"));
    EXPECT_THAT(told.After(""), IsEmpty());
}

TEST(ScreenReaderText, OfALineThatIsWrittenOverOnlyTheDifferenceIsTold) {
    Told told;
    EXPECT_THAT(told.After("10 % done"), ElementsAre("+10 % done"));
    EXPECT_THAT(told.After("\r2"), ElementsAre("-1", "+2"));
    EXPECT_EQ(told.Cursor(), 1);
}

} // namespace
} // namespace qncomm::testing

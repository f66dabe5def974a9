#include "Snapshot.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Terminal;
using qncomm::testing::Flaw;
using qncomm::testing::Rows;

/// Each final byte of a control sequence with a count that no screen has.
TEST(HugeCounts, CostNoMoreThanTheScreenIsLarge) {
    for (char final = '@'; final <= '~'; ++final) {
        Terminal terminal;
        terminal.Write("text\x1B[150;150Hmore");
        for (int i = 0; i < 1000; ++i) {
            terminal.Write("\x1B[999999999");
            terminal.Write({&final, 1});
        }
        EXPECT_EQ(Flaw(terminal), "") << final;
    }
}

TEST(HugeCounts, OfRepetitionFillOneRow) {
    Terminal terminal;
    terminal.Write("x\x1B[5b");
    EXPECT_EQ(terminal.Row(1).text, "xxxxxx");
    terminal.Write("\r\nabc\x1B[999999999b");
    EXPECT_EQ(terminal.Row(2).text, "ab" + std::string(298, 'c'));
    EXPECT_EQ(terminal.Row(3).text, "ccc");
    EXPECT_EQ(terminal.CursorRow(), 3);
}

TEST(HugeCounts, OfScrollingSaveNoMoreLinesThanThereAre) {
    Terminal terminal;
    terminal.Write("a\x1B[999999999S");
    EXPECT_EQ(terminal.ScrollbackEnd(), 300U);
    EXPECT_EQ(terminal.ScreenText(), "");
}

TEST(Values, BeyondTheLastAreDropped) {
    std::string sequence = "\x1B[";
    for (int i = 0; i < 100'000; ++i)
        sequence += "1;";
    Terminal terminal;
    terminal.Write(sequence + "31mx\x1B[2;3Hy");
    EXPECT_EQ(Rows(terminal), "x|  y");
    EXPECT_FALSE(qncomm::testing::StyleAt(terminal, 1, 1).Foreground()
                 == qncomm::terminal::Colour::Indexed(1));
    EXPECT_TRUE(qncomm::testing::StyleAt(terminal, 1, 1).Has(qncomm::terminal::Attribute::Bold));
}

TEST(Values, SaturateInsteadOfWrappingRound) {
    Terminal terminal;
    // 65537 and 4294967297 would be 1 in 16 and 32 bits.
    terminal.Write("\x1B[65537;4294967297Hx");
    EXPECT_EQ(terminal.CursorRow(), 300);
    EXPECT_EQ(terminal.CursorColumn(), 300);
}

TEST(StringsWithoutAnEnd, AreSwallowedUpToTheirBound) {
    for (const std::string_view start : {"\x1B]", "\x1BP", "\x1BX", "\x1B^", "\x1B_"}) {
        Terminal terminal;
        terminal.Write(std::string(start) + std::string(4096, 's') + "shown");
        EXPECT_EQ(terminal.Row(1).text, "shown");
    }
}

TEST(StringsWithoutAnEnd, KeepTheirBoundWhenTheyComeInPieces) {
    Terminal terminal;
    terminal.Write("\x1B]");
    for (int i = 0; i < 4096; ++i)
        terminal.Write("s");
    terminal.Write("shown");
    EXPECT_EQ(terminal.Row(1).text, "shown");
}

TEST(SmallestScreen, TakesEverySequence) {
    Terminal terminal(qncomm::testing::Sized(1, 1, 1));
    for (char final = '@'; final <= '~'; ++final)
        for (const char* value : {"", "1", "2;2", "999"})
            terminal.Write("ab\r\n\t\b\x1B[" + std::string(value) + final
                           + "c\x1BM\x1B"
                             "Dx");
    EXPECT_EQ(Flaw(terminal), "");
    EXPECT_LE(terminal.ScrollbackEnd() - terminal.ScrollbackBegin(), 1U);
}

} // namespace

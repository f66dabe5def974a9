#include "Snapshot.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Terminal;
using qncomm::testing::Flaw;
using qncomm::testing::Rows;
using qncomm::testing::Sized;
using qncomm::testing::StyleAt;
using testing::IsEmpty;

TEST(FreshTerminal, HasThreeHundredRowsAndColumnsAndNothingOnThem) {
    Terminal terminal;
    EXPECT_EQ(terminal.Rows(), 300);
    EXPECT_EQ(terminal.Columns(), 300);
    EXPECT_EQ(terminal.CursorRow(), 1);
    EXPECT_EQ(terminal.CursorColumn(), 1);
    EXPECT_TRUE(terminal.CursorVisible());
    EXPECT_EQ(terminal.ScreenText(), "");
    EXPECT_EQ(terminal.ScrollbackEnd(), 0U);
}

TEST(ScreenText, HasAllRowsAtFullWidth) {
    Terminal terminal(Sized(2, 4));
    terminal.Write("A\r\n  B");
    EXPECT_EQ(terminal.ScreenText(), "A   \r\n  B ");
}

TEST(ScreenText, OfTheLargeGridKeepsItsThreeHundredRows) {
    Terminal terminal;
    terminal.Write("x");
    EXPECT_EQ(terminal.ScreenText().size(), 300U * 300 + 299 * 2);
}

TEST(ScreenText, OfBlanksAloneIsEmpty) {
    Terminal terminal;
    terminal.Write("   \r\n \x1B[41m\x1B[2J");
    EXPECT_EQ(terminal.ScreenText(), "");
}

TEST(Clear, KeepsTheRowAndNotTheColumn) {
    Terminal terminal;
    terminal.Write("one\r\ntwo\x1B[12;5Htwelve");
    terminal.Clear();
    EXPECT_EQ(terminal.ScreenText(), "");
    EXPECT_EQ(terminal.CursorRow(), 12);
    EXPECT_EQ(terminal.CursorColumn(), 1);
}

TEST(Clear, TakesBackWhatNoiseHasSet) {
    Terminal terminal(Sized(5, 10));
    terminal.Write("\x1B[2;3r\x1B[4h\x1B[?7l\x1B[?25l\x1B[7;31m\x1B[3g\x1B[1;1H\x1B]0;never ended");
    terminal.Clear();
    EXPECT_TRUE(terminal.CursorVisible());
    terminal.Write("0123456789ab\r\n\tX\x1B[5;1H\nY");
    EXPECT_EQ(Rows(terminal), "ab|        X|||Y");
    EXPECT_EQ(StyleAt(terminal, 1, 1), qncomm::terminal::Style());
}

TEST(Clear, KeepsTheScrollback) {
    Terminal terminal(Sized(2, 10));
    terminal.Write("a\r\nb\r\nc");
    terminal.Clear();
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "a");
}

TEST(CursorRow, MovesAndKeepsTheColumn) {
    Terminal terminal;
    terminal.Write("abc");
    terminal.SetCursorRow(12);
    EXPECT_EQ(terminal.CursorRow(), 12);
    EXPECT_EQ(terminal.CursorColumn(), 4);
    terminal.Write("x");
    EXPECT_EQ(terminal.Row(12).text, "   x");
}

TEST(CursorRow, GoesToTheNearestRowThatThereIs) {
    Terminal terminal;
    terminal.SetCursorRow(0);
    EXPECT_EQ(terminal.CursorRow(), 1);
    terminal.SetCursorRow(-32768);
    EXPECT_EQ(terminal.CursorRow(), 1);
    terminal.SetCursorRow(32767);
    EXPECT_EQ(terminal.CursorRow(), 300);
}

TEST(Cursor, CanBeHiddenAndShown) {
    Terminal terminal;
    terminal.Write("\x1B[?25l");
    EXPECT_FALSE(terminal.CursorVisible());
    terminal.Write("\x1B[?25h");
    EXPECT_TRUE(terminal.CursorVisible());
}

TEST(Bell, IsToldOnce) {
    Terminal terminal;
    EXPECT_FALSE(terminal.TakeBell());
    terminal.Write("a\a\ab");
    EXPECT_TRUE(terminal.TakeBell());
    EXPECT_FALSE(terminal.TakeBell());
}

TEST(Row, OutsideOfTheScreenIsEmpty) {
    Terminal terminal;
    terminal.Write("x");
    EXPECT_EQ(terminal.Row(0).text, "");
    EXPECT_EQ(terminal.Row(301).text, "");
}

TEST(Row, TellsThatItsLineGoesOn) {
    Terminal terminal(Sized(3, 4));
    terminal.Write("abcdef\r\ng");
    EXPECT_TRUE(terminal.Row(1).wrapped);
    EXPECT_FALSE(terminal.Row(2).wrapped);
    terminal.Write("\x1B[1;3H\x1B[K");
    EXPECT_FALSE(terminal.Row(1).wrapped);
}

TEST(Resize, CutsOffAtTheRightAndAtTheBottom) {
    Terminal terminal(Sized(4, 6));
    terminal.Write("abcdef\x1B[4;1Hlast\x1B[2;2H");
    EXPECT_TRUE(terminal.Resize(2, 3));
    EXPECT_EQ(terminal.ScreenText(), "abc\r\n   ");
    EXPECT_EQ(terminal.CursorRow(), 2);
    EXPECT_EQ(terminal.ScrollbackEnd(), 0U);
    EXPECT_EQ(Flaw(terminal), "");
}

TEST(Resize, KeepsTheRowOfTheCursor) {
    Terminal terminal(Sized(4, 6));
    terminal.Write("a\r\nb\r\n\x1B[31mc\x1B[m\r\nd");
    EXPECT_TRUE(terminal.Resize(2, 6));
    EXPECT_EQ(Rows(terminal), "c|d");
    EXPECT_EQ(StyleAt(terminal, 1, 1).Foreground(), qncomm::terminal::Colour::Indexed(1));
    EXPECT_EQ(terminal.CursorRow(), 2);
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "a");
    EXPECT_EQ(terminal.ScrollbackLine(1).text, "b");
}

TEST(Resize, AddsBlankSpaceAndTabStops) {
    Terminal terminal(Sized(2, 10));
    terminal.Write("ab\x1B[1;2r");
    EXPECT_TRUE(terminal.Resize(4, 20));
    terminal.Write("\r\t\tX\x1B[4;1H\nY");
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "ab              X");
    EXPECT_EQ(Rows(terminal), "|||Y");
}

TEST(Resize, TakesMarginsAndWaitingWrapBack) {
    Terminal terminal(Sized(5, 4));
    terminal.Write("\x1B[2;3r\x1B[1;1Habcd");
    EXPECT_TRUE(terminal.Resize(4, 8));
    terminal.Write("X\x1B[4;1H\nY");
    EXPECT_EQ(Rows(terminal), "|||Y");
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "abcX");
}

TEST(Resize, RefusesASizeThatCannotBe) {
    Terminal terminal;
    terminal.Write("x");
    EXPECT_FALSE(terminal.Resize(0, 80));
    EXPECT_FALSE(terminal.Resize(24, -1));
    EXPECT_FALSE(terminal.Resize(Terminal::MostRows + 1, 80));
    EXPECT_FALSE(terminal.Resize(24, Terminal::MostColumns + 1));
    EXPECT_EQ(terminal.Rows(), 300);
    EXPECT_EQ(terminal.Row(1).text, "x");
}

TEST(Options, OutOfRangeAreClamped) {
    Terminal terminal(Sized(0, 32767));
    EXPECT_EQ(terminal.Rows(), 1);
    EXPECT_EQ(terminal.Columns(), Terminal::MostColumns);
    terminal.Write("a\r\nb");
    EXPECT_EQ(Rows(terminal), "b");
}

TEST(Appearance, IsKeptForItsOwnerAndTouchesNoCell) {
    Terminal terminal;
    (void)terminal.TakeDamage();
    terminal.Appearance().backColor = 15;
    terminal.Appearance().fontSize = 9.75F;
    EXPECT_EQ(terminal.Appearance().backColor, 15);
    EXPECT_EQ(terminal.Appearance().fontSize, 9.75F);
    EXPECT_FALSE(terminal.HasDamage());
}

TEST(Terminal, InsertedTextUpToTheEdgeEndsTheRowHoweverItIsCut) {
    Terminal::Options options;
    options.rows = 3;
    options.columns = 4;
    const std::string bytes = "abcdef\x1b[1;1H\x1b[4hWXYZ";
    Terminal whole(options);
    whole.Write(bytes);
    Terminal pieces(options);
    for (const char c : bytes)
        pieces.Write(std::string(1, c));
    EXPECT_EQ(whole.Row(1), pieces.Row(1));
    EXPECT_FALSE(whole.Row(1).wrapped) << "what it went on with was pushed over the edge";
}

} // namespace

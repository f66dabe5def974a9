#include "Snapshot.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using qncomm::Terminal;
using qncomm::terminal::Colour;
using qncomm::terminal::Style;
using qncomm::terminal::StyleRun;
using qncomm::testing::Sized;

std::string Numbered(std::uint64_t number) {
    return "line " + std::to_string(number);
}

TEST(Scrollback, KeepsTenThousandLinesAtFullWidth) {
    Terminal terminal;
    for (int line = 0; line < 10'400; ++line)
        terminal.Write(Numbered(static_cast<std::uint64_t>(line))
                       + "\x1B[1;250H"
                         "\x1B[300;290Hend"
                         "\r\n");
    terminal.Write("\x1B[2J");
    EXPECT_EQ(terminal.ScrollbackEnd() - terminal.ScrollbackBegin(), 10'000U);
}

TEST(Scrollback, KeepsEveryLineAsItWas) {
    Terminal terminal(Sized(3, 40, 50));
    for (std::uint64_t line = 0; line < 200; ++line)
        terminal.Write(Numbered(line) + std::string(line % 30, 'x') + "\r\n");
    EXPECT_EQ(terminal.ScrollbackEnd(), 198U);
    EXPECT_EQ(terminal.ScrollbackBegin(), 148U);
    for (std::uint64_t line = 148; line < 198; ++line)
        EXPECT_EQ(terminal.ScrollbackLine(line).text, Numbered(line) + std::string(line % 30, 'x'));
}

TEST(Scrollback, HasEmptyLinesForNumbersThatItDoesNotKeep) {
    Terminal terminal(Sized(2, 10, 3));
    terminal.Write("a\r\nb\r\nc\r\nd\r\ne\r\nf");
    EXPECT_EQ(terminal.ScrollbackBegin(), 1U);
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "");
    EXPECT_EQ(terminal.ScrollbackLine(1).text, "b");
    EXPECT_EQ(terminal.ScrollbackLine(4).text, "");
}

TEST(Scrollback, KeepsStylesAndWraps) {
    Terminal terminal(Sized(2, 8, 10));
    terminal.Write("ab\x1B[31mcdefghij\x1B[m\r\n\x1B[42m\x1B[K\x1B[mx\r\ny\r\nz");
    const auto first = terminal.ScrollbackLine(0);
    Style red;
    red.SetForeground(Colour::Indexed(1));
    EXPECT_EQ(first.text, "abcdefgh");
    EXPECT_THAT(first.runs, testing::ElementsAre(StyleRun{2, Style()}, StyleRun{6, red}));
    EXPECT_TRUE(first.wrapped);
    EXPECT_FALSE(terminal.ScrollbackLine(1).wrapped);
    const auto third = terminal.ScrollbackLine(2);
    EXPECT_EQ(third.text, "x");
    EXPECT_EQ(third.fill.Background(), Colour::Indexed(2));
    EXPECT_THAT(third.runs, testing::IsEmpty());
}

TEST(Scrollback, TakesLinesFromTheTopEdgeAlone) {
    Terminal terminal(Sized(5, 10, 10));
    terminal.Write("a\r\nb\r\nc\r\nd\r\ne\x1B[2;4r\x1B[4;1H\n\n");
    EXPECT_EQ(terminal.ScrollbackEnd(), 0U);
    terminal.Write("\x1B[1;4r\x1B[4;1H\n");
    EXPECT_EQ(terminal.ScrollbackEnd(), 1U);
    EXPECT_EQ(terminal.ScrollbackLine(0).text, "a");
}

TEST(Scrollback, CanBeEmptied) {
    Terminal terminal(Sized(2, 10, 10));
    terminal.Write("a\r\nb\r\nc\r\nd");
    terminal.ClearScrollback();
    EXPECT_EQ(terminal.ScrollbackBegin(), terminal.ScrollbackEnd());
    EXPECT_EQ(terminal.ScrollbackEnd(), 2U);
    terminal.Write("\r\ne\x1B[3J\r\nf");
    EXPECT_EQ(terminal.ScrollbackBegin(), 3U);
    EXPECT_EQ(terminal.ScrollbackLine(3).text, "d");
}

TEST(Scrollback, StaysWhenTheScreenGrowsWider) {
    Terminal terminal(Sized(2, 10, 3));
    terminal.Write("\x1B[31ma\x1B[m\r\nb\r\nc\r\nd");
    const auto before = qncomm::testing::TakeSnapshot(terminal).scrollback;
    terminal.Resize(2, 100);
    EXPECT_EQ(qncomm::testing::TakeSnapshot(terminal).scrollback, before);
    terminal.Write("\r\n" + std::string(100, 'w') + "\r\n\r\n\r\n");
    EXPECT_EQ(terminal.ScrollbackLine(terminal.ScrollbackEnd() - 2).text, std::string(100, 'w'));
}

TEST(Scrollback, ForgetsTheColoursOfTheOldestLinesFirstAndNoText) {
    Terminal terminal(Sized(1, 300, 2'000));
    std::string rainbow;
    for (int cell = 0; cell < 300; ++cell)
        rainbow += "\x1B[3" + std::to_string(cell % 8) + "mx";
    for (int line = 0; line < 2'000; ++line)
        terminal.Write(rainbow + "\r\n");
    const std::uint64_t newest = terminal.ScrollbackEnd() - 1;
    EXPECT_EQ(terminal.ScrollbackBegin(), 0U);
    EXPECT_EQ(terminal.ScrollbackLine(newest).runs.size(), 300U);
    EXPECT_EQ(terminal.ScrollbackLine(0).text, std::string(300, 'x'));
    EXPECT_THAT(terminal.ScrollbackLine(0).runs, testing::IsEmpty());
    // 262,144 runs of 300 a line: the newest 873 lines have all of theirs.
    EXPECT_EQ(terminal.ScrollbackLine(newest - 872).runs.size(), 300U);
    EXPECT_THAT(terminal.ScrollbackLine(newest - 873).runs, testing::IsEmpty());
}

/// What is kept against a plain list of the lines, over many rounds of both rings.
TEST(Scrollback, AgreesWithAListOfLines) {
    std::mt19937 random(7);
    Terminal terminal(Sized(1, 60, 37));
    std::vector<std::string> lines;
    for (int i = 0; i < 5'000; ++i) {
        lines.emplace_back(random() % 61, static_cast<char>('a' + random() % 26));
        terminal.Write("\x1B[3" + std::to_string(random() % 8) + "m" + lines.back() + "\r\n");
    }
    ASSERT_EQ(terminal.ScrollbackEnd(), lines.size());
    for (auto line = terminal.ScrollbackBegin(); line < lines.size(); ++line)
        EXPECT_EQ(terminal.ScrollbackLine(line).text, lines[line]);
}

} // namespace

#include "Snapshot.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Terminal;
using qncomm::terminal::Attribute;
using qncomm::terminal::Colour;
using qncomm::terminal::Style;
using qncomm::testing::StyleAt;

/// A style as a test writes it.
Style Made(Colour foreground, Colour background, std::initializer_list<Attribute> attributes = {}) {
    Style style;
    style.SetForeground(foreground);
    style.SetBackground(background);
    for (const Attribute attribute : attributes)
        style.Set(attribute);
    return style;
}

struct GraphicsCase {
    const char* name;
    const char* parameters;
    Style expected;
};

constexpr Colour Own;

const GraphicsCase Cases[] = {
    {"Nothing", "", {}},
    {"Reset", "1;31;0", {}},
    {"ResetByAnEmptyValue", "1;", {}},
    {"AllAttributes", "1;2;3;4;5;7;8;9;53",
     Made(Own, Own,
          {Attribute::Bold, Attribute::Faint, Attribute::Italic, Attribute::Underline,
           Attribute::Blink, Attribute::Inverse, Attribute::Conceal, Attribute::Strike,
           Attribute::Overline})},
    {"AllAttributesTakenBack", "1;2;3;4;5;7;8;9;53;22;23;24;25;27;28;29;55", {}},
    {"DoubleUnderline", "4;21", Made(Own, Own, {Attribute::DoubleUnderline})},
    {"UnderlineByShape", "4:2", Made(Own, Own, {Attribute::DoubleUnderline})},
    {"UnderlineByCurl", "4:3", Made(Own, Own, {Attribute::Underline})},
    {"UnderlineTakenBackByShape", "4;4:0", {}},
    {"DarkColours", "31;42", Made(Colour::Indexed(1), Colour::Indexed(2))},
    {"BrightColours", "97;100", Made(Colour::Indexed(15), Colour::Indexed(8))},
    {"OwnColoursAgain", "31;42;39;49", {}},
    {"ColourOfThePalette", "38;5;208;48;5;17", Made(Colour::Indexed(208), Colour::Indexed(17))},
    {"ColourOfThePaletteJoined", "38:5:208", Made(Colour::Indexed(208), Own)},
    {"DirectColour", "38;2;1;2;3;48;2;255;254;253",
     Made(Colour::Rgb(1, 2, 3), Colour::Rgb(255, 254, 253))},
    {"DirectColourJoined", "38:2:1:2:3", Made(Colour::Rgb(1, 2, 3), Own)},
    {"DirectColourJoinedWithItsSpace", "48:2::1:2:3", Made(Own, Colour::Rgb(1, 2, 3))},
    {"BlackIsNotTheOwnColour", "38;2;0;0;0", Made(Colour::Rgb(0, 0, 0), Own)},
    {"WhatFollowsAColourCounts", "38;5;208;1", Made(Colour::Indexed(208), Own, {Attribute::Bold})},
    {"WhatFollowsAJoinedColourCounts", "38:5:208;1",
     Made(Colour::Indexed(208), Own, {Attribute::Bold})},
    {"UnderlineColourIsPassedOver", "58;5;4;1;58:2::7:7:7;3",
     Made(Own, Own, {Attribute::Bold, Attribute::Italic})},
    {"ColourOutsideThePaletteChangesNothing", "38;5;256;1", Made(Own, Own, {Attribute::Bold})},
    {"DirectColourOutOfRangeChangesNothing", "38;2;1;2;300;1", Made(Own, Own, {Attribute::Bold})},
    {"UnknownColourFormChangesNothing", "38;9;1", Made(Own, Own, {Attribute::Bold})},
    {"ColourCutShort", "1;38;5", Made(Colour::Indexed(0), Own, {Attribute::Bold})},
    {"JoinedColourCutShortChangesNothing", "38:5;1", Made(Own, Own, {Attribute::Bold})},
    {"UnknownValuesChangeNothing", "1;10;26;50;99;108;65535", Made(Own, Own, {Attribute::Bold})},
};

class Graphics : public testing::TestWithParam<GraphicsCase> {};

TEST_P(Graphics, StyleTheCellsWrittenAfterThem) {
    Terminal terminal;
    terminal.Write("\x1B[" + std::string(GetParam().parameters) + "mx");
    EXPECT_EQ(StyleAt(terminal, 1, 1).Bits(), GetParam().expected.Bits());
}

INSTANTIATE_TEST_SUITE_P(Values, Graphics, testing::ValuesIn(Cases),
                         [](const auto& row) { return std::string(row.param.name); });

const Style Red = Made(Colour::Indexed(1), Own);
const Style OnRed = Made(Own, Colour::Indexed(1));

TEST(StyledRow, HoldsARunForEachStyle) {
    Terminal terminal;
    terminal.Write("ab\x1B[31mcd\x1B[me");
    const auto row = terminal.Row(1);
    EXPECT_EQ(row.text, "abcde");
    using qncomm::terminal::StyleRun;
    EXPECT_THAT(row.runs,
                testing::ElementsAre(StyleRun{2, Style()}, StyleRun{2, Red}, StyleRun{1, Style()}));
}

TEST(StyledRow, OfOwnColoursHasNoRuns) {
    Terminal terminal;
    terminal.Write("\x1B[31mab\x1B[m\rab");
    EXPECT_THAT(terminal.Row(1).runs, testing::IsEmpty());
}

TEST(StyledRow, MovesItsStylesWithItsCharacters) {
    Terminal terminal;
    terminal.Write("ab\x1B[31mcd\x1B[m\x1B[1;2H\x1B[2@");
    EXPECT_EQ(StyleAt(terminal, 1, 5), Red);
    EXPECT_EQ(StyleAt(terminal, 1, 2), Style());
    terminal.Write("\x1B[3P");
    EXPECT_EQ(terminal.Row(1).text, "acd");
    EXPECT_EQ(StyleAt(terminal, 1, 1), Style());
    EXPECT_EQ(StyleAt(terminal, 1, 2), Red);
}

TEST(Erasing, LeavesTheBackgroundInForceAndNothingElse) {
    Terminal terminal;
    terminal.Write("abcdef\x1B[1;4;41m\x1B[1;3H\x1B[X\x1B[1;5H\x1B[K");
    EXPECT_EQ(StyleAt(terminal, 1, 2), Style());
    EXPECT_EQ(StyleAt(terminal, 1, 3), OnRed);
    EXPECT_EQ(StyleAt(terminal, 1, 4), Style());
    EXPECT_EQ(StyleAt(terminal, 1, 5), OnRed);
    EXPECT_EQ(terminal.Row(1).fill, OnRed);
    EXPECT_EQ(terminal.Row(2).fill, Style());
    terminal.Write("\x1B[2J");
    EXPECT_EQ(terminal.Row(300).fill, OnRed);
}

TEST(Erasing, KeepsTheColourOfWhatLiesBefore) {
    Terminal terminal;
    terminal.Write("\x1B[41m\x1B[2K\x1B[m\x1B[1;5H\x1B[K");
    EXPECT_EQ(terminal.Row(1).text, "    ");
    EXPECT_EQ(StyleAt(terminal, 1, 4), OnRed);
    EXPECT_EQ(StyleAt(terminal, 1, 5), Style());
}

TEST(Deleting, BringsInTheBackgroundAtTheEdge) {
    Terminal terminal;
    terminal.Write("abcdef\x1B[41m\x1B[1;2H\x1B[2P");
    EXPECT_EQ(terminal.Row(1).text.substr(0, 4), "adef");
    EXPECT_EQ(StyleAt(terminal, 1, 298), Style());
    EXPECT_EQ(StyleAt(terminal, 1, 299), OnRed);
    EXPECT_EQ(StyleAt(terminal, 1, 300), OnRed);
}

TEST(Scrolling, BringsInRowsOfTheBackground) {
    Terminal terminal;
    terminal.Write("\x1B[41m\x1B[300;1H\n");
    EXPECT_EQ(terminal.Row(300).fill, OnRed);
    EXPECT_EQ(terminal.Row(299).fill, Style());
}

TEST(SavedCursor, KeepsTheStyle) {
    Terminal terminal;
    terminal.Write("\x1B[31m\x1B"
                   "7\x1B[m\x1B"
                   "8x");
    EXPECT_EQ(StyleAt(terminal, 1, 1), Red);
}

} // namespace

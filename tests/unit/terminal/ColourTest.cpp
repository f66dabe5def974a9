#include "terminal/Style.h"

#include <gtest/gtest.h>

namespace {

using qncomm::terminal::Attribute;
using qncomm::terminal::Colour;
using qncomm::terminal::Style;

constexpr std::uint32_t OwnValue = 0x00123456;

TEST(ColourValue, IsBlueGreenRedFromTheTopDown) {
    EXPECT_EQ(Colour::Rgb(0x11, 0x22, 0x33).Value(OwnValue), 0x00332211U);
    EXPECT_EQ(Colour::Rgb(0, 0, 0).Value(OwnValue), 0U);
}

TEST(ColourValue, OfTheOwnColourIsTheTerminals) {
    EXPECT_TRUE(Colour().IsOwn());
    EXPECT_EQ(Colour().Value(OwnValue), OwnValue);
    EXPECT_FALSE(Colour::Rgb(0, 0, 0).IsOwn());
    EXPECT_FALSE(Colour::Indexed(0).IsOwn());
}

TEST(ColourValue, OfThePalette) {
    EXPECT_EQ(Colour::Indexed(0).Value(OwnValue), 0x000000U);
    EXPECT_EQ(Colour::Indexed(9).Value(OwnValue), 0x0000FFU);
    EXPECT_EQ(Colour::Indexed(15).Value(OwnValue), 0xFFFFFFU);
    EXPECT_EQ(Colour::Indexed(16).Value(OwnValue), 0x000000U);
    EXPECT_EQ(Colour::Indexed(21).Value(OwnValue), 0xFF0000U);
    EXPECT_EQ(Colour::Indexed(208).Value(OwnValue), 0x0087FFU);
    EXPECT_EQ(Colour::Indexed(231).Value(OwnValue), 0xFFFFFFU);
    EXPECT_EQ(Colour::Indexed(232).Value(OwnValue), 0x080808U);
    EXPECT_EQ(Colour::Indexed(255).Value(OwnValue), 0xEEEEEEU);
}

TEST(StyleWord, KeepsItsPartsApart) {
    Style style;
    style.SetForeground(Colour::Rgb(255, 255, 255));
    style.SetBackground(Colour::Indexed(255));
    style.Set(Attribute::Overline);
    EXPECT_EQ(style.Foreground(), Colour::Rgb(255, 255, 255));
    EXPECT_EQ(style.Background(), Colour::Indexed(255));
    EXPECT_TRUE(style.Has(Attribute::Overline));
    EXPECT_FALSE(style.Has(Attribute::Strike));
    style.SetForeground({});
    style.Set(Attribute::Overline, false);
    EXPECT_EQ(style, style.Erased());
    EXPECT_EQ(Style::FromBits(style.Bits()), style);
}

} // namespace

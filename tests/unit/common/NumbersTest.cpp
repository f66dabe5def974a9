#include "common/Numbers.h"

#include "testing/core/ExpectRaised.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

TEST(Numbers, ValReadsTheNumberAtTheStart) {
    const std::pair<const char*, double> cases[] = {
        {"9600", 9600},    {" 9600", 9600}, {"9600abc", 9600},
        {"9.6E3", 9600},   {"", 0},         {"Nada", 0},
        {"-12.5x", -12.5}, {"+7", 7},       {".5", 0.5},
        {"5.", 5},         {".", 0},        {"-", 0},
        {"1E", 1},         {"1E+", 1},      {"1d2", 100},
        {"1e-2", 0.01},    {"8 Data", 8},   {"1022 in line", 1022},
        {"1,5", 1},        {"0x10", 0},     {"--5", 0},
        {"1-2", 1},        {"1.2.3", 1.2},  {"E5", 0},
    };
    for (const auto& [text, value] : cases)
        EXPECT_DOUBLE_EQ(Val(text), value) << text;
}

TEST(Numbers, ValSkipsBlanksTabsAndLineFeedsBetweenDigits) {
    EXPECT_DOUBLE_EQ(Val("\t1 2\n3 . 5"), 123.5);
    EXPECT_DOUBLE_EQ(Val("12\r3"), 12);
}

TEST(Numbers, ValReadsHexadecimalAndOctal) {
    EXPECT_DOUBLE_EQ(Val("&HFF"), 255);
    EXPECT_DOUBLE_EQ(Val("&hffff"), -1);
    EXPECT_DOUBLE_EQ(Val("&H10000"), 65536);
    EXPECT_DOUBLE_EQ(Val("&O17"), 15);
    EXPECT_DOUBLE_EQ(Val("&H"), 0);
    EXPECT_DOUBLE_EQ(Val("&X1"), 0);
}

TEST(Numbers, ValBeyondADoubleOverflowsAndBelowItIsZero) {
    EXPECT_RAISED(Val("1E999"), 6);
    EXPECT_DOUBLE_EQ(Val("1E-999"), 0);
    EXPECT_RAISED(Val("&H123456789"), 6);
}

TEST(Numbers, WholeNumbersRoundHalvesToTheEvenOne) {
    EXPECT_EQ(ToInt16(0.5), 0);
    EXPECT_EQ(ToInt16(1.5), 2);
    EXPECT_EQ(ToInt16(2.5), 2);
    EXPECT_EQ(ToInt16(-1.5), -2);
    EXPECT_EQ(ToInt16(-0.5), 0);
    EXPECT_EQ(ToInt32(2.51), 3);
}

TEST(Numbers, WholeNumbersOverflow) {
    EXPECT_EQ(ToInt16(32767.4), 32767);
    EXPECT_RAISED(ToInt16(32767.5), 6);
    EXPECT_EQ(ToInt16(-32768.5), -32768);
    EXPECT_RAISED(ToInt16(-32769), 6);
    EXPECT_RAISED(ToInt32(2147483648.0), 6);
    EXPECT_RAISED(ToInt32(0.0 / 0.0), 6);
}

TEST(Numbers, TextHasNoLeadingBlankAndAPoint) {
    EXPECT_EQ(ToText(0.0), "0");
    EXPECT_EQ(ToText(9600.0), "9600");
    EXPECT_EQ(ToText(9600.5), "9600.5");
    EXPECT_EQ(ToText(-0.25), "-0.25");
    EXPECT_EQ(ToText(1e20), "1E+20");
    EXPECT_EQ(ToText(std::int32_t{-5}), "-5");
}

TEST(Numbers, BooleansAreTrueFalseOrNumbers) {
    EXPECT_TRUE(ToBoolean("True"));
    EXPECT_FALSE(ToBoolean("FALSE"));
    EXPECT_TRUE(ToBoolean("-1"));
    EXPECT_FALSE(ToBoolean("0"));
    EXPECT_RAISED(ToBoolean("Nada"), 13);
    EXPECT_RAISED(ToBoolean(""), 13);
    EXPECT_RAISED(ToBoolean("1x"), 13);
    EXPECT_EQ(ToText(true), "True");
    EXPECT_EQ(ToText(false), "False");
}

} // namespace
} // namespace qncomm

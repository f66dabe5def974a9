#include "common/Variant.h"

#include "common/MemorySettings.h"
#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace qncomm {
namespace {

// What a host may overload for texts stays unambiguous, and no pointer becomes True.
static_assert(!std::is_convertible_v<const char*, Variant>);
static_assert(!std::is_convertible_v<std::string, Variant>);
static_assert(!std::is_convertible_v<std::string_view, Variant>);
static_assert(!std::is_constructible_v<Variant, const int*>);
static_assert(std::is_convertible_v<bool, Variant>);
static_assert(std::is_convertible_v<std::int16_t, Variant>);

std::string Chosen(std::string_view) {
    return "text";
}
std::string Chosen(const Variant&) {
    return "variant";
}

TEST(Variant, LeavesATextToTheOverloadForTexts) {
    EXPECT_EQ(Chosen("a"), "text");
    EXPECT_EQ(Chosen(std::string("a")), "text");
    EXPECT_EQ(Chosen(std::int32_t{1}), "variant");
}

TEST(Variant, HoldsNothingUnlessGivenAValue) {
    EXPECT_TRUE(Variant().IsNothing());
    EXPECT_FALSE(Variant(false).IsNothing());
    EXPECT_FALSE(Variant("").IsNothing());
}

TEST(Variant, IsEqualByTypeAndContents) {
    EXPECT_EQ(Variant(std::int16_t{7}), Variant(std::int32_t{7}));
    EXPECT_NE(Variant(7), Variant("7"));
    EXPECT_NE(Variant("a"), Variant("a", TextKind::Line));
    EXPECT_EQ(Variant(Variant::Record{{"Size", 1}}), Variant(Variant::Record{{"Size", 1}}));
    EXPECT_NE(Variant(Variant::List{1, 2}), Variant(Variant::List{2, 1}));
}

TEST(Variant, IsReadAsABooleanFromTextsAndNumbers) {
    EXPECT_TRUE(AsBoolean(Variant(" TRUE ")));
    EXPECT_FALSE(AsBoolean(Variant("0")));
    EXPECT_TRUE(AsBoolean(-1));
    EXPECT_FALSE(AsBoolean(0.0));
    EXPECT_RAISED(AsBoolean(Variant("perhaps")), RtTypeMismatch);
}

TEST(Variant, IsReadAsAWholeNumberHalvesToTheEvenOne) {
    EXPECT_EQ(AsInteger(Variant(" 24 ")), 24);
    EXPECT_EQ(AsInteger(true), -1);
    EXPECT_EQ(AsLong(2.5), 2);
    EXPECT_EQ(AsLong(Variant("3.5")), 4);
    EXPECT_RAISED(AsInteger(32768), RtOverflow);
    EXPECT_RAISED(AsLong(Variant("1e10")), RtOverflow);
    EXPECT_RAISED(AsDouble(Variant("1e999")), RtOverflow);
    EXPECT_RAISED(AsLong(Variant("24 rows")), RtTypeMismatch);
    EXPECT_RAISED(AsLong(Variant("")), RtTypeMismatch);
}

TEST(Variant, IsReadAsATextWithAPoint) {
    EXPECT_EQ(AsString(9.75), "9.75");
    EXPECT_EQ(AsString(true), "True");
    EXPECT_EQ(AsString(-3), "-3");
    EXPECT_EQ(AsString(Variant(" as it is ")), " as it is ");
}

TEST(Variant, RefusesToBeAScalarWhenItIsNone) {
    for (const Variant& none : {Variant(), Variant(Variant::List{}), Variant(Variant::Record{}),
                                Variant(std::make_shared<MemorySettings>())}) {
        EXPECT_RAISED(AsBoolean(none), RtTypeMismatch);
        EXPECT_RAISED(AsLong(none), RtTypeMismatch);
        EXPECT_RAISED(AsString(none), RtTypeMismatch);
    }
}

} // namespace
} // namespace qncomm

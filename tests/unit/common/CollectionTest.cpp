#include "common/Collection.h"

#include "testing/core/ExpectRaised.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

using Texts = std::vector<std::string>;

class CollectionTest : public ::testing::Test {
  protected:
    CollectionTest() {
        mItems.Add("first", "A");
        mItems.Add("second", "b");
        mItems.Add("keyless");
    }
    Texts All() const { return {mItems.begin(), mItems.end()}; }

    Collection<std::string> mItems;
};

TEST_F(CollectionTest, CountsFromOneInOrder) {
    EXPECT_EQ(mItems.Count(), 3U);
    EXPECT_EQ(mItems.Item(1), "first");
    EXPECT_EQ(mItems.Item(3), "keyless");
    EXPECT_EQ(All(), (Texts{"first", "second", "keyless"}));
}

TEST_F(CollectionTest, KeysAreFoundInAnyCase) {
    EXPECT_EQ(mItems.Item("a"), "first");
    EXPECT_EQ(mItems.Item("B"), "second");
    EXPECT_TRUE(mItems.Contains("B"));
    EXPECT_FALSE(mItems.Contains(""));
}

TEST_F(CollectionTest, RaisesForWhatIsNotThereOrTaken) {
    EXPECT_RAISED(mItems.Item("c"), 5);
    EXPECT_RAISED(mItems.Item(""), 5);
    EXPECT_RAISED(mItems.Item(0), 9);
    EXPECT_RAISED(mItems.Item(4), 9);
    EXPECT_RAISED(mItems.Remove("c"), 5);
    EXPECT_RAISED(mItems.Remove(4), 9);
    EXPECT_RAISED(mItems.Add("again", "a"), 457);
    EXPECT_RAISED(mItems.AddBefore(4, "x"), 9);
    EXPECT_EQ(mItems.Count(), 3U);
}

TEST_F(CollectionTest, InsertingAndRemovingKeepsKeysOnTheirItems) {
    mItems.AddBefore(1, "zeroth", "z");
    EXPECT_EQ(mItems.Item("b"), "second");
    mItems.Remove("A");
    EXPECT_EQ(All(), (Texts{"zeroth", "second", "keyless"}));
    EXPECT_EQ(mItems.Item("B"), "second");
    mItems.Remove(1);
    EXPECT_FALSE(mItems.Contains("z"));
    mItems.Add("back", "z");
    EXPECT_EQ(mItems.Item("Z"), "back");
}

TEST_F(CollectionTest, RemovingAKeylessItemLeavesTheKeys) {
    mItems.Remove(3);
    EXPECT_EQ(mItems.Item("a"), "first");
    EXPECT_EQ(mItems.Item("b"), "second");
}

TEST(KeyPlacesTest, FindsEachOfManyKeysWhateverWasTakenOut) {
    KeyPlaces keys;
    const auto nameOf = [](std::size_t number) { return "KEY" + std::to_string(number); };
    for (std::size_t i = 0; i < 1000; ++i)
        ASSERT_TRUE(keys.Insert(i, i % 10 == 0 ? "" : nameOf(i)));
    EXPECT_FALSE(keys.Insert(1000, nameOf(999)));
    EXPECT_TRUE(keys.Insert(5, "BETWEEN"));
    EXPECT_EQ(keys.Find("BETWEEN"), 5U);
    EXPECT_EQ(keys.Find(nameOf(4)), 4U);
    EXPECT_EQ(keys.Find(nameOf(999)), 1000U);
    keys.Erase(5);
    keys.Erase(1);
    for (std::size_t i = 2; i < 1000; ++i)
        EXPECT_EQ(keys.Find(nameOf(i)),
                  i % 10 == 0 ? std::nullopt : std::optional<std::size_t>(i - 1));
    EXPECT_EQ(keys.Find(""), std::nullopt);
    EXPECT_EQ(keys.Find(nameOf(1)), std::nullopt);
    keys.Clear();
    EXPECT_EQ(keys.Find(nameOf(2)), std::nullopt);
    EXPECT_TRUE(keys.Insert(0, nameOf(2)));
}

} // namespace
} // namespace qncomm

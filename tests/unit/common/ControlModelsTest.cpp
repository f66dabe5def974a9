#include "common/ControlModels.h"

#include "common/RuntimeErrors.h"

#include "testing/core/ExpectRaised.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

/// Counts what an event of a control raises.
class Count {
  public:
    explicit Count(Event<>& event) : mHandler(event.Connect([this] { ++mTimes; })) {}
    int Taken() { return std::exchange(mTimes, 0); }

  private:
    int mTimes = 0;
    Subscription mHandler;
};

TEST(ControlModels, ChangedComesOnlyForAValueThatDiffers) {
    LabelModel label("a");
    Count changes(label.Changed);
    label.SetCaption("a");
    label.SetVisible(true);
    EXPECT_EQ(changes.Taken(), 0);
    label.SetCaption("b");
    label.SetVisible(false);
    EXPECT_EQ(changes.Taken(), 2);
}

TEST(ControlModels, AButtonIsClickedOnlyWhenEnabledAndVisible) {
    ButtonModel button("&Go");
    Count clicks(button.Clicked);
    button.Click();
    EXPECT_EQ(clicks.Taken(), 1);
    button.SetEnabled(false);
    button.Click();
    button.SetEnabled(true);
    button.SetVisible(false);
    button.Click();
    EXPECT_EQ(clicks.Taken(), 0);
}

TEST(ControlModels, ABoxIsFlippedByTheUserAndSetByTheProgramWithoutAClick) {
    CheckBoxModel box("x");
    Count clicks(box.Clicked);
    box.SetChecked(true);
    EXPECT_EQ(clicks.Taken(), 0);
    box.Click();
    EXPECT_FALSE(box.Checked());
    EXPECT_EQ(clicks.Taken(), 1);
    box.SetEnabled(false);
    box.Click();
    EXPECT_FALSE(box.Checked());
}

TEST(ControlModels, AListSelectsByValueAndKeepsItsSelectionForAValueThatIsNotThere) {
    ListModel list;
    list.SetEntries({{"two", 2}, {"four", 4}});
    EXPECT_FALSE(list.HasSelection());
    EXPECT_RAISED(list.SelectedValue(), RtSubscript);
    EXPECT_TRUE(list.SelectValue(4));
    EXPECT_FALSE(list.SelectValue(5));
    EXPECT_EQ(list.ListIndex(), 1);
    EXPECT_EQ(list.SelectedValue(), 4);
    EXPECT_RAISED(list.SetListIndex(2), RtSubscript);
    EXPECT_RAISED(list.SetListIndex(-2), RtSubscript);
    list.SetEntries({{"six", 6}});
    EXPECT_EQ(list.ListIndex(), -1);
}

TEST(ControlModels, APickIsAClickEvenOfTheSameEntry) {
    ListModel list;
    list.SetEntries({{"two", 2}, {"four", 4}});
    Count clicks(list.Clicked);
    list.SetListIndex(0);
    EXPECT_EQ(clicks.Taken(), 0);
    list.Pick(0);
    EXPECT_EQ(clicks.Taken(), 1);
    EXPECT_RAISED(list.Pick(7), RtSubscript);
    list.SetEnabled(false);
    list.Pick(1);
    EXPECT_EQ(list.ListIndex(), 0);
}

TEST(ControlModels, TextIsInsertedInPlaceOfTheSelection) {
    TextBoxModel box;
    box.SetText("abcdef");
    EXPECT_EQ(box.SelStart(), 0U);
    box.Select(2, 3);
    box.InsertAtCursor("<CR>");
    EXPECT_EQ(box.Text(), "ab<CR>f");
    EXPECT_EQ(box.SelStart(), 6U);
    EXPECT_EQ(box.SelLength(), 0U);
}

TEST(ControlModels, ASelectionIsCutToTheText) {
    TextBoxModel box;
    box.SetText("abc");
    box.Select(2, 99);
    EXPECT_EQ(box.SelLength(), 1U);
    box.Select(99, 99);
    EXPECT_EQ(box.SelStart(), 3U);
    box.Type("x", 1);
    EXPECT_EQ(box.Text(), "x");
    EXPECT_EQ(box.SelStart(), 1U);
    box.SetEnabled(false);
    box.Type("y", 1);
    EXPECT_EQ(box.Text(), "x");
}

TEST(ControlModels, TurningToAnotherTabTellsTheFormerOne) {
    TabStripModel tabs({"a", "b"});
    std::vector<std::size_t> former;
    const Subscription follow =
        tabs.Clicked.Connect([&](std::size_t tab) { former.push_back(tab); });
    tabs.Pick(1);
    tabs.Pick(1);
    tabs.Pick(0);
    EXPECT_EQ(former, (std::vector<std::size_t>{0, 1}));
    EXPECT_RAISED(tabs.Pick(2), RtSubscript);
    EXPECT_RAISED(tabs.SetCaption(2, "c"), RtSubscript);
    tabs.SetCaption(1, "c");
    EXPECT_EQ(tabs.Captions()[1], "c");
}

TEST(ControlModels, ABarRefusesAValueOutsideItsRange) {
    ProgressBarModel bar(0, 30);
    bar.SetValue(30);
    EXPECT_RAISED(bar.SetValue(31), RtInvalidCall);
    EXPECT_RAISED(bar.SetValue(-1), RtInvalidCall);
    EXPECT_EQ(bar.Value(), 30);
}

} // namespace
} // namespace qncomm

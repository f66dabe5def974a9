// The link with printers that are less obliging than most.

#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/core/ExpectRaised.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

class Mood : public ::testing::TestWithParam<const char*> {
  protected:
    ManualReactor mReactor;
    Stack mStack{mReactor, std::string("sim:R7G?") + GetParam()};
};

TEST_P(Mood, LeavesEachCommandItsOwnReply) {
    ASSERT_EQ(mStack.mLink.ModelText(), "R7G");
    for (int i = 0; i < 30; ++i) {
        const std::string number = std::to_string(i);
        const Lines reply = mStack.Ask("PRINT " + number);
        ASSERT_EQ(reply.size(), 3U) << i;
        EXPECT_EQ(reply[1], number);
        EXPECT_GT(NumberRaisedBy([&] { mStack.Ask("KILL \"tmp:NONE\""); }), 60000);
    }
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
}

TEST_P(Mood, LeavesTheListingsWhole) {
    clsQuorin quorin(mStack.mLink, mStack.mDesktop, SystemFiles());
    std::string device = "rom:";
    quorin.Files(device);
    const std::size_t files = quorin.PrinterDevices()->Item(device)->Files->Count();
    quorin.GetSetup();
    const std::size_t items = quorin.PrinterSetupItems()->Count();
    for (int i = 0; i < 3; ++i) {
        quorin.Files(device);
        EXPECT_EQ(quorin.PrinterDevices()->Item(device)->Files->Count(), files);
        EXPECT_GT(quorin.Fre(), 0);
        quorin.GetSetup();
        EXPECT_EQ(quorin.PrinterSetupItems()->Count(), items);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Mood,
                         ::testing::Values("answer=40", "answer=80:OPEN", "answer=300:SETUP",
                                           "late-errors=60", "long-setup=on",
                                           "long-setup=on&baud=2400&paced=on&uart=3",
                                           "greeting=Ready.", "noise=1,seed=7",
                                           "noise=0.5,seed=3&baud=9600&paced=on"));

TEST(SlowCard, CostsItsOwnCommandAndNoOther) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?answer=1500:FILES");
    clsQuorin quorin(stack.mLink, stack.mDesktop, SystemFiles());
    const std::int32_t free = quorin.Fre();
    ASSERT_GT(free, 2);
    std::string device = "card1:";
    for (int i = 0; i < 3; ++i) {
        EXPECT_RAISED(quorin.Files(device), 1008);
        EXPECT_EQ(quorin.Fre(), free);
        EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1");
    }
}

} // namespace
} // namespace qncomm::testing

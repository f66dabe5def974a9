#include "testing/programs/QnctlFixture.h"

namespace {

using Memory = qncomm::testing::QnctlFixture;

TEST_F(Memory, AListingStaysUnderTwentyMegabytes) {
    const qncomm::testing::Ended ended = Run({"files", "tmp:", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_GT(ended.peakKb, 0);
    EXPECT_LE(ended.peakKb, 20 * 1024);
}

TEST_F(Memory, WatchingAPrinterThatNeverStopsTalkingCostsNone) {
    StartSimulator();
    StartTalking();
    const auto brief = Run({"watch", "--port", Printer(), "--until", "42\r\n"});
    EXPECT_EQ(brief.status, 0) << brief.err;
    const auto ended = Run({"watch", "--port", Printer(), "--for", "1000"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_LT(ended.peakKb, brief.peakKb + 2'000);
}

} // namespace

#include "testing/programs/QnctlFixture.h"

namespace {

using Memory = qncomm::testing::QnctlFixture;

TEST_F(Memory, AListingStaysUnderTwentyMegabytes) {
    const qncomm::testing::Ended ended = Run({"files", "tmp:", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_GT(ended.peakKb, 0);
    EXPECT_LE(ended.peakKb, 20 * 1024);
}

} // namespace

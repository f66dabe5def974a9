#include "common/StopWatch.h"

#include "testing/core/ManualLoop.h"

#include <gtest/gtest.h>

#include <limits>

namespace qncomm {
namespace {

using testing::ManualLoop;

TEST(StopWatch, MeasuresFromItsLastRestart) {
    ManualLoop loop;
    StopWatch watch(loop);
    loop.MoveTo(loop.NowMs() + 40);
    EXPECT_EQ(watch.ElapsedMs(), 40);
    watch.Restart();
    EXPECT_EQ(watch.ElapsedMs(), 0);
}

TEST(StopWatch, AWaitEndsWhenTheLimitIsExceeded) {
    ManualLoop loop;
    const StopWatch watch(loop);
    EXPECT_EQ(watch.UntilExceeds(50), 51);
    loop.MoveTo(loop.NowMs() + 50);
    EXPECT_EQ(watch.UntilExceeds(50), 1);
    loop.MoveTo(loop.NowMs() + 1);
    EXPECT_EQ(watch.UntilExceeds(50), 0);
    loop.MoveTo(loop.NowMs() + 1000);
    EXPECT_EQ(watch.UntilExceeds(50), 0);
}

TEST(StopWatch, StopsAtTheLargest32BitNumber) {
    ManualLoop loop;
    const StopWatch watch(loop);
    loop.MoveTo(loop.NowMs() + (std::int64_t{1} << 40));
    EXPECT_EQ(watch.ElapsedMs(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(StopWatch(loop).UntilExceeds(std::numeric_limits<std::int32_t>::max()),
              std::numeric_limits<std::int32_t>::max());
}

} // namespace
} // namespace qncomm

#include "FlowWindow.h"

#include <gtest/gtest.h>

namespace qncomm::transfer {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t Piece = 64;

// A window that has seen a line of 10,000 bytes a second, and damage.
FlowWindow Seasoned() {
    FlowWindow flow(0.03, FlowWindow::Damage::LosesAll);
    flow.Marked(1000, 1s);
    flow.Acknowledged(1000, 1100ms);
    flow.SetErrorRate(1e-3);
    flow.Settle();
    return flow;
}

} // namespace

TEST(FlowWindow, ATimeIsNotTakenFromTheAnswerToAMarkThatARestartGaveUp) {
    FlowWindow flow = Seasoned();
    flow.Marked(1500, 2s);
    flow.Marked(2000, 2s);
    flow.Restart(1500);
    EXPECT_FALSE(flow.MayAnswerFormer(1500)) << "it begins there: nothing is asked";
    EXPECT_TRUE(flow.MayAnswerFormer(2000));
    EXPECT_FALSE(flow.MayAnswerFormer(1999));
    flow.Acknowledged(2000, 3s);
    EXPECT_FALSE(flow.MayAnswerFormer(2000)) << "it came";
}

TEST(FlowWindow, DamageThatLetsNoMarkThroughNarrowsIt) {
    FlowWindow flow = Seasoned();
    const std::uint64_t before = flow.Size(Piece);
    flow.Restart(1000); // a mark had come through
    EXPECT_EQ(flow.Size(Piece), before);
    for (int i = 0; i < 40; ++i) {
        flow.Marked(1500, 2s);
        flow.Restart(1000);
    }
    EXPECT_EQ(flow.Size(Piece), Piece) << "one piece may always travel";
    flow.Marked(2000, 3s);
    flow.Acknowledged(2000, 3100ms);
    EXPECT_GE(flow.Size(Piece), before) << "what comes through counts at once";
}

TEST(FlowWindow, DamageTakesTheSpareWhereEverythingBehindItIsLost) {
    FlowWindow all = Seasoned();
    FlowWindow one(0.03, FlowWindow::Damage::LosesPiece);
    one.Marked(1000, 1s);
    one.Acknowledged(1000, 1100ms);
    one.SetErrorRate(1e-3);
    one.Settle();
    EXPECT_EQ(all.Size(Piece), 1030U) << "what the line holds, and three hundredths of the errors";
    EXPECT_EQ(one.Size(Piece), 1000U + 150U + 30U + 2 * Piece);
}

} // namespace qncomm::transfer

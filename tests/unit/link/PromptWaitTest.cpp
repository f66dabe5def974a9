#include "LinkFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;

/// The wait for the prompt on an open port after a cancelled transfer.
class PromptWait : public LinkFixture {
  protected:
    PromptWait() { mSerial.SetPortOpen(true); }

    /// How many ms the wait took; its answer goes to mFound.
    std::int64_t Wait(bool moving) {
        const std::int64_t start = mLoop.NowMs();
        mFound = mLink.AwaitPrompt(moving);
        return mLoop.NowMs() - start;
    }

    bool mFound = false;
};

TEST_F(PromptWait, EndsWithThePromptHoweverItIsCut) {
    mSerial.Arrive("rest of the tran");
    mSerial.Arrive("sfer\r\nO", 100);
    mSerial.Arrive("k\r\n", 300);
    EXPECT_EQ(Wait(false), 300);
    EXPECT_TRUE(mFound);
}

TEST_F(PromptWait, GivesUpWhenTheLineIsSilent) {
    EXPECT_NEAR(static_cast<double>(Wait(false)), 400, 1);
    EXPECT_FALSE(mFound);
}

TEST_F(PromptWait, WhatIsOnItsWayIsWaitedForAsLongAsItTravels) {
    mLink.SetBaudrate("9600");
    mSerial.Arrive("Ok\r\n", 2600); // two thousand bytes take 2292 ms
    EXPECT_EQ(Wait(true), 2600);
    EXPECT_TRUE(mFound);
}

TEST_F(PromptWait, ALineThatNeverFallsSilentIsLeftBehindWhatTravelsAndItsEcho) {
    mLink.SetBaudrate("9600");
    for (int ms = 0; ms < 20'000; ms += 200)
        mSerial.Arrive("x", ms);
    EXPECT_NEAR(static_cast<double>(Wait(true)), 2 * 2291 + 1000, 1);
    EXPECT_FALSE(mFound);
}

TEST_F(PromptWait, ALineThatTalksOnIsLeftSoonWhenNothingWasOnItsWay) {
    for (int ms = 0; ms < 20'000; ms += 200)
        mSerial.Arrive("x", ms);
    EXPECT_NEAR(static_cast<double>(Wait(false)), 1000, 1);
    EXPECT_FALSE(mFound);
}

TEST_F(PromptWait, StatusEventTellsForHowLong) {
    std::vector<std::string> told;
    const auto status = mLink.StatusEvent.Connect(
        [&](const std::string& message, std::int16_t, bool&) { told.push_back(message); });
    mLink.SetBaudrate("9600");
    Wait(true);
    Wait(false);
    EXPECT_THAT(told, ElementsAre("Waiting for the printer's prompt, for up to 6 s",
                                  "Waiting for the printer's prompt, for up to 1 s"));
}

TEST_F(PromptWait, ALineOfNoiseIsLeftWhenItHasSaidMoreThanAnyPrinter) {
    const std::string noise(4000, '~');
    for (int ms = 0; ms < 20'000; ++ms)
        mSerial.Arrive(noise, ms);
    EXPECT_LE(Wait(false), 100);
    EXPECT_FALSE(mFound);
}

TEST_F(PromptWait, TheOkOfALineThatTalksOnIsWaitedForFifteenSecondsWithoutYieldingToo) {
    mSerial.SetReceiveThreshold(0);
    for (int ms = 0; ms < 60'000; ms += 400)
        mSerial.Arrive("not yet\r\n", ms);
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.WaitForOk());
    EXPECT_NEAR(static_cast<double>(mLoop.NowMs() - start), 15'000, 1);
}

TEST_F(PromptWait, EndsWhenThePortGoesAwayAndTakesTheReceivePathBack) {
    const auto alarm = mLoop.StartTimer(50, [this] { mSerial.Vanish(); });
    EXPECT_LE(Wait(false), 60);
    EXPECT_FALSE(mFound);
    EXPECT_TRUE(mSerial.HasSink());
}

} // namespace
} // namespace qncomm::testing

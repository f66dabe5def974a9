// A port whose far side is slow to answer: operations await it while the host goes on, and the
// terminal opens beside the host's work.
#include "LinkFixture.h"
#include "common/RuntimeErrors.h"

namespace qncomm::testing {
namespace {

/// A port whose far side answers after half a second.
class SlowPort : public LinkFixture {
  protected:
    explicit SlowPort(bool bBeside = true) : LinkFixture({.opensBeside = bBeside}) {
        mSerial.mReachable = false;
        mSerial.mOnOpen = [this] { mOpenedAt = mLoop.NowMs() - mBegun; };
    }
    void AnswerAfter(std::int32_t ms) {
        mLoop.After(ms, [this] { mSerial.mReachable = true; });
    }

    std::int64_t mBegun = mLoop.NowMs();
    std::int64_t mOpenedAt = -1; ///< ms after the beginning; -1 while it is closed
};

TEST_F(SlowPort, IsAwaitedByAClaimWhileTheHostGoesOn) {
    int ticks = 0;
    const auto timer = mLoop.StartTimer(100, [&] { ++ticks; });
    AnswerAfter(500);
    const PortClaim claim = Claim();
    EXPECT_TRUE(claim);
    EXPECT_EQ(mOpenedAt, 500);
    EXPECT_GE(ticks, 4);
    EXPECT_EQ(mPortStates, std::vector{true});
}

TEST_F(SlowPort, IsAwaitedForAsLongAsItMayTakeAndNoLonger) {
    mLink.SetImmediateMode(true);
    mSerial.mOnOpen = [] { throw QNError(SerialErrDevice, "PDQComm", "no answer"); };
    EXPECT_THROW(static_cast<void>(mLink.AcquirePort()), QNError);
    EXPECT_LE(mLoop.NowMs() - mBegun, 15'001);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(SlowPort, ThatIsGivenUpWasNeverOpen) {
    mLoop.After(200, [] { throw OperationCancelled(); });
    EXPECT_THROW(static_cast<void>(mLink.AcquirePort()), OperationCancelled);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_EQ(mOpenedAt, -1);
    EXPECT_TRUE(mPortStates.empty());
    AnswerAfter(100);
    EXPECT_TRUE(Claim()) << "the next one tries again";
}

TEST_F(SlowPort, EndsAClaimWithItsControl) {
    mLoop.After(200, [this] { mLink.TearDown(); });
    EXPECT_RAISED(static_cast<void>(mLink.AcquirePort()), RtObjectNotSet);
    EXPECT_EQ(mLoop.NowMs() - mBegun, 200);
    EXPECT_TRUE(mPortStates.empty());
}

TEST_F(SlowPort, RefusesAClaimFromAHandlerMeanwhile) {
    mLoop.After(200, [this] { EXPECT_FALSE(mLink.AcquirePort()); });
    AnswerAfter(500);
    EXPECT_TRUE(Claim());
}

TEST_F(SlowPort, OpensForTheTerminalBesideTheHostsWork) {
    mLink.SetTerminalActive(true);
    EXPECT_EQ(mLoop.NowMs(), mBegun) << "showing the terminal waits for nothing";
    EXPECT_EQ(mOpenedAt, -1);
    EXPECT_TRUE(mPortStates.empty());
    AnswerAfter(500);
    mLink.Delay(600);
    EXPECT_GE(mOpenedAt, 500);
    EXPECT_EQ(mPortStates, std::vector{true});
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(SlowPort, IsNotOpenedForATerminalThatWasHiddenMeanwhile) {
    mLink.SetTerminalActive(true);
    mLink.SetTerminalActive(false);
    AnswerAfter(100);
    mLink.Delay(2000);
    EXPECT_EQ(mOpenedAt, -1);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_TRUE(mPortStates.empty());
}

TEST_F(SlowPort, IsAwaitedByAClaimThatComesBeforeTheTerminalHasIt) {
    mLink.SetTerminalActive(true);
    AnswerAfter(505);
    {
        const PortClaim claim = Claim();
        EXPECT_EQ(mOpenedAt, 505);
        EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToLink);
    }
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mPortStates, std::vector{true});
}

TEST_F(SlowPort, StillComesToTheTerminalWhenAClaimOnItWasCancelled) {
    mLink.SetTerminalActive(true);
    mLoop.After(200, [] { throw OperationCancelled(); });
    EXPECT_THROW(static_cast<void>(mLink.AcquirePort()), OperationCancelled);
    EXPECT_EQ(mLink.UseCount(), 1);
    AnswerAfter(100);
    mLink.Delay(300);
    EXPECT_NE(mOpenedAt, -1);
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(SlowPort, ThatDoesNotOpenForTheTerminalIsToldAndNotTriedAgain) {
    int tries = 0;
    mSerial.mOnOpen = [&] {
        ++tries;
        throw QNError(SerialErrDevice, "PDQComm", "no answer");
    };
    mLink.SetTerminalActive(true);
    AnswerAfter(100);
    mLink.Delay(5000);
    EXPECT_EQ(tries, 1);
    EXPECT_EQ(mPortStates, std::vector{true});
}

TEST_F(SlowPort, KeepsNoCancelledSearchWaitingAndComesBackToTheTerminal) {
    mSerial.mReachable = true;
    mLink.SetTerminalActive(true);
    mSerial.mReachable = false;
    mLoop.After(200, [] { throw OperationCancelled(); });
    EXPECT_THROW(mLink.AutoConnect(1), OperationCancelled);
    EXPECT_EQ(mLoop.NowMs() - mBegun, 200);
    EXPECT_FALSE(mSerial.PortOpen());
    AnswerAfter(100);
    mLink.Delay(200);
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(SlowPort, KeepsNoChangeOfSettingsWaiting) {
    mSerial.mReachable = true;
    mLink.SetTerminalActive(true);
    mSerial.mReachable = false;
    mLink.SetBaudrate("19200");
    EXPECT_EQ(mLoop.NowMs(), mBegun);
    EXPECT_FALSE(mSerial.PortOpen());
    AnswerAfter(100);
    mLink.Delay(200);
    EXPECT_TRUE(mSerial.PortOpen());
}

/// A host that has not asked for that.
class AwaitedPort : public SlowPort {
  protected:
    AwaitedPort() : SlowPort(false) {}
};

TEST_F(AwaitedPort, IsOpenWhenTheTerminalIsShown) {
    mLink.SetTerminalActive(true);
    EXPECT_TRUE(mSerial.PortOpen()) << "opening it waits by itself";
    EXPECT_EQ(mPortStates, std::vector{true});
    mLink.SetBaudrate("19200");
    EXPECT_TRUE(mSerial.PortOpen());
}

} // namespace
} // namespace qncomm::testing

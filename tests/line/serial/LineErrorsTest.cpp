// A tty whose driver counts line errors, and one whose driver does not.

#include "TtyChannel.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"
#include "testing/line/PtyPair.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a driver would count, of a pseudo-terminal, which has none.
class CountedTty : public ::testing::Test {
  protected:
    CountedTty() {
        EXPECT_EQ(mPort.Bindings().Give(1, mPty.path), "");
        mPort.SetPortNumber(1);
        mPort.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    }

    /// The events of one arriving byte.
    std::vector<SerialEvent> Arrive() {
        mEvents.clear();
        EXPECT_EQ(::write(mPty.master.Get(), "x", 1), 1);
        EXPECT_TRUE(mPort.WaitForReceive(10'000));
        EXPECT_EQ(mPort.Read(), "x");
        mLoop.Yield(0);
        return mEvents;
    }

    PtyPair mPty = OpenPty();
    std::optional<TtyErrorCounts> mCounts = TtyErrorCounts{};
    int mLooks = 0;
    PollLoop mLoop;
    PDQComm mPort{mLoop, {}, nullptr, [this](const PortAddress& address, Reactor& reactor) {
                      return std::make_unique<TtyChannel>(reactor, address.text, [this](int) {
                          ++mLooks;
                          return mCounts;
                      });
                  }};
    std::vector<SerialEvent> mEvents;
};

TEST_F(CountedTty, WhatItCountsMoreIsAnEvent) {
    mCounts = TtyErrorCounts{7, 7, 7, 7}; // of the program that had it before
    mPort.SetPortOpen(true);
    EXPECT_THAT(Arrive(), IsEmpty());
    mCounts->frame = 12;
    EXPECT_THAT(Arrive(), ElementsAre(SerialEventFrame));
    mCounts->parity = 8;
    mCounts->overrun = 9;
    EXPECT_THAT(Arrive(), ElementsAre(SerialEventOverrun, SerialEventParity));
    mCounts->overflow = 0; // it has gone round
    EXPECT_THAT(Arrive(), ElementsAre(SerialEventReceiveOverflow));
    EXPECT_THAT(Arrive(), IsEmpty());
}

TEST_F(CountedTty, IsLookedAtWhenBytesHaveComeAndNotOtherwise) {
    mPort.SetPortOpen(true);
    EXPECT_EQ(mLooks, 1);
    mCounts->frame = 1;
    mLoop.Yield(0);
    EXPECT_FALSE(mPort.WaitForReceive(1));
    EXPECT_EQ(mLooks, 1);
    Arrive();
    EXPECT_EQ(mLooks, 2);
}

TEST_F(CountedTty, WhatItCountedWhileItWasClosedIsNobodys) {
    mPort.SetPortOpen(true);
    mPort.SetPortOpen(false);
    mCounts->frame = 1;
    mPort.SetPortOpen(true);
    EXPECT_THAT(Arrive(), IsEmpty());
}

TEST_F(CountedTty, ThatDoesNotCountIsAskedOnce) {
    mCounts.reset();
    mPort.SetPortOpen(true);
    EXPECT_THAT(Arrive(), IsEmpty());
    EXPECT_THAT(Arrive(), IsEmpty());
    EXPECT_EQ(mLooks, 1);
}

TEST_F(CountedTty, ThatNoLongerCountsIsNotAskedAgain) {
    mPort.SetPortOpen(true);
    mCounts.reset();
    EXPECT_THAT(Arrive(), IsEmpty());
    EXPECT_THAT(Arrive(), IsEmpty());
    EXPECT_EQ(mLooks, 2);
}

TEST_F(CountedTty, APseudoTerminalDoesNotCount) {
    EXPECT_FALSE(ErrorCountsOf(mPty.master.Get()).has_value());
    EXPECT_FALSE(ErrorCountsOf(-1).has_value());
}

} // namespace
} // namespace qncomm::testing

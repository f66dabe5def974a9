#include "SearchFixture.h"

namespace qncomm::testing {
namespace {

class Reboot : public LinkFixture {
  protected:
    Reboot() {
        mLink.SetImmediateMode(true);
        mSerial.Handshake();
        mSerial.Expect("REBOOT\r\n");
        mStart = mLoop.NowMs();
    }

    void ExpectRestored() {
        EXPECT_EQ(mLink.UseCount(), 0);
        EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
        EXPECT_TRUE(mSerial.HasSink());
        EXPECT_EQ(mDialogs.mRebootWindows, 0);
    }

    std::int64_t mStart = 0;
};

TEST_F(Reboot, WaitsAndAsksUntilThePrinterAnswers) {
    mSerial.Expect("SYSVAR(18)=-1\r\n");
    mSerial.Expect("SYSVAR(18)=-1\r\n").Reply("SYSVAR(18)=-1\r\nOk\r\n", 10);
    mLink.Reboot();
    EXPECT_EQ(mDialogs.mRebootsShown, 1);
    EXPECT_EQ(mLoop.NowMs() - mStart, 1001 + 10'001 + 3 * 2001);
    ExpectRestored();
}

TEST_F(Reboot, WhatThePrinterSaysWhileBootingIsThrownAway) {
    mSerial.Arrive("Ok\r\n", 500);
    mSerial.Expect("SYSVAR(18)=-1\r\n").Reply("Ok\r\n", 10);
    mLink.Reboot();
    EXPECT_EQ(mLoop.NowMs() - mStart, 1001 + 10'001 + 2 * 2001);
}

TEST_F(Reboot, AnAnswerMayComeInPieces) {
    mSerial.Arrive("O", 1001 + 10'001 + 500);
    mSerial.Arrive("k", 1001 + 10'001 + 2500);
    mLink.Reboot();
    EXPECT_EQ(mLoop.NowMs() - mStart, 1001 + 10'001 + 2 * 2001);
}

TEST_F(Reboot, AGreetingIsNoAnswerAndThePrinterIsAskedAfterIt) {
    mSerial.Arrive("Welcome\r\n", 1001 + 10'001 + 500);
    mSerial.Expect("SYSVAR(18)=-1\r\n").Reply("SYSVAR(18)=-1\r\nOk\r\n", 10);
    mLink.Reboot();
    EXPECT_EQ(mLoop.NowMs() - mStart, 1001 + 10'001 + 3 * 2001);
    ExpectRestored();
}

TEST_F(Reboot, WaitsForDsrWhenItIsWatched) {
    mLink.SetDSRDetectActive(true);
    mLoop.After(500, [this] { mSerial.mDsr = false; });
    mLoop.After(8000, [this] { mSerial.mDsr = true; });
    mSerial.Expect("SYSVAR(18)=-1\r\n").Reply("Ok\r\n", 10);
    mLink.Reboot();
    EXPECT_EQ(mLoop.NowMs() - mStart, 8000 + 10'001 + 2 * 2001);
}

TEST_F(Reboot, TheEndOfTheProgramRestoresTheLink) {
    mLoop.After(5000, [] { throw OperationCancelled(); });
    EXPECT_THROW(mLink.Reboot(), OperationCancelled);
    ExpectRestored();
}

class RebootSearch : public SearchFixture {};

TEST_F(RebootSearch, ARefusedPortShowsNothing) {
    mSettingsThatWork = "";
    mLink.Reboot();
    EXPECT_EQ(mDialogs.mRebootsShown, 0);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(RebootSearch, TheThirdAttemptSearchesAndASuccessEndsTheWait) {
    ASSERT_EQ(mLink.ModelText(), "R7A");
    mMessages.clear();
    mHeard.clear();
    mOnStatus = [&](const std::string& text, bool&) {
        if (text.starts_with("AutoConnect")) mSettingsThatWork = "57600,n,8,2";
    };
    mLoop.After(100, [&] { mSettingsThatWork = ""; });
    mLink.Reboot();
    EXPECT_EQ(mMessages.front(), "AutoConnect initiate 0");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_TRUE(mSerial.HasSink());
    EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
}

TEST_F(RebootSearch, AfterAFailedSearchTheWaitGoesOn) {
    ASSERT_EQ(mLink.ModelText(), "R7A");
    mMessages.clear();
    mLoop.After(100, [&] { mSettingsThatWork = ""; });
    mLoop.After(60'000, [&] { mSettingsThatWork = "57600,n,8,2"; });
    mLink.Reboot();
    EXPECT_EQ(mMessages.front(), "AutoConnect initiate 0");
    EXPECT_EQ(mMessages[29], "No Printer found 100");
    EXPECT_EQ(mLink.UseCount(), 0);
}

} // namespace
} // namespace qncomm::testing

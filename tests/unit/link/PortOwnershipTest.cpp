#include "LinkFixture.h"

namespace qncomm::testing {
namespace {

class PortOwnership : public LinkFixture {};

TEST_F(PortOwnership, TheFirstClaimOpensAndTheLastReleaseCloses) {
    {
        const PortClaim claim = Claim();
        EXPECT_TRUE(claim);
        EXPECT_TRUE(mSerial.PortOpen());
        EXPECT_EQ(mLink.UseCount(), 1);
        EXPECT_EQ(mPortStates, std::vector{true});
    }
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(PortOwnership, NestedClaimsShareThePortAndHandshakeEach) {
    const PortClaim outer = Claim();
    {
        const PortClaim inner = Claim();
        EXPECT_EQ(mLink.UseCount(), 2);
    }
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mPortStates, std::vector{true});
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(PortOwnership, TheHandshakeKeepsNoPreviousValues) {
    const PortClaim claim = Claim();
    EXPECT_EQ(mLink.PreviousSysvar18(), 0);
    EXPECT_EQ(mLink.PreviousSysvar19(), 0);
}

TEST_F(PortOwnership, TheHandshakeStartsOnEmptyBuffers) {
    mLink.SetImmediateMode(true);
    mSerial.SetPortOpen(true);
    mSerial.Arrive("stale\r\nOk\r\n");
    mLoop.Yield(1);
    mSerial.Arrive("late\r\nOk\r\n");
    mSerial.Handshake();
    const PortClaim claim = mLink.AcquirePort();
    Lines lines;
    mSerial.Exchange("FILES", {"row"});
    mLink.OutputText("FILES\r\n");
    EXPECT_EQ(mLink.InputText(lines), 3);
    EXPECT_THAT(lines, ElementsAre("FILES", "row", "Ok"));
}

TEST_F(PortOwnership, AMissingDsrRefusesWithoutSendingAByte) {
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    mLink.SetImmediateMode(true);
    EXPECT_FALSE(mLink.AcquirePort());
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(PortOwnership, DsrIsSampledAfterOpening) {
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    mSerial.mOnOpen = [this] { mSerial.mDsr = true; };
    EXPECT_TRUE(Claim());
}

TEST_F(PortOwnership, AFailedSearchRefusesAndLeavesNothingClaimed) {
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    EXPECT_FALSE(mLink.AcquirePort());
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(PortOwnership, AFailedExclusiveClaimClearsItsMark) {
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    EXPECT_FALSE(mLink.AcquirePort(true));
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mLink.UseCount(), 0);
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    EXPECT_FALSE(mLink.AcquirePort(true));
    EXPECT_EQ(mSerial.Tag(), "");
}

TEST_F(PortOwnership, AnExclusiveClaimRefusesEveryOther) {
    mLink.SetImmediateMode(true);
    mSerial.Handshake();
    {
        const PortClaim exclusive = mLink.AcquirePort(true);
        EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
        EXPECT_FALSE(mLink.AcquirePort());
        EXPECT_FALSE(mLink.AcquirePort(true));
        EXPECT_FALSE(mLink.AutoConnect(1));
        EXPECT_EQ(mLink.UseCount(), 1);
    }
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(PortOwnership, AnOpenErrorShowsWhenThePortIsUsed) {
    mSerial.mOnOpen = [] { throw QNError(SerialErrNoSuchPort, "PDQComm", "no such port"); };
    mLink.SetImmediateMode(true);
    EXPECT_RAISED_FROM(mLink.AcquirePort(), "1024 Datalink:OutputText");
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_THAT(mDesktop.mLog, ElementsAre("no such port"));
}

TEST_F(PortOwnership, AShowWithinNestedClaimsComesWhenTheLastOfThemEnds) {
    {
        const PortClaim outer = Claim();
        mLink.SetTerminalActive(true);
        { const PortClaim inner = Claim(); }
        EXPECT_EQ(mLink.UseCount(), 1);
        EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToLink);
    }
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(PortOwnership, AHideClosesThePortOnlyWhenNobodyElseHasIt) {
    mLink.SetTerminalActive(true);
    Claim().Detach();
    mLink.SetTerminalActive(false);
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mLink.UseCount(), 1);
    mLink.ReleasePort();
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(PortOwnership, DetachedClaimsAreGivenBackByReleasePort) {
    Claim().Detach();
    EXPECT_EQ(mLink.UseCount(), 1);
    mLink.ReleasePort();
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(PortOwnership, AReleaseTooManyRaisesNoEventAndClampsAtZero) {
    mLink.ReleasePort();
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_THAT(mPortStates, IsEmpty());
}

TEST_F(PortOwnership, AForcedReleaseDropsAllButTheTerminal) {
    mLink.SetTerminalActive(true);
    Claim().Detach();
    Claim().Detach();
    mLink.ReleasePort(false, true);
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    mLink.SetTerminalActive(false);
    Claim().Detach();
    Claim().Detach();
    mLink.ReleasePort(false, true);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(PortOwnership, TheOrderOfAReleaseIsModeLast) {
    PortClaim claim = Claim();
    TakeLog();
    claim.Release();
    EXPECT_THAT(TakeLog(), ElementsAre("Close", "Mode 0"));
}

// -- Errors and claims

TEST_F(PortOwnership, AnErrorGivesTheInnermostClaimBackAndUnwindingTheRest) {
    const auto failing = [this] {
        const PortClaim outer = Claim();
        const PortClaim middle = Claim();
        const PortClaim inner = Claim();
        Lines lines;
        mSerial.Exchange("BAD", {"Error 5: wrong"});
        mLink.OutputText("BAD\r\n");
        mLink.InputText(lines);
    };
    EXPECT_RAISED(failing(), 60005);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(PortOwnership, ATrappedErrorOfAnInnerClaimLeavesTheOuterOne) {
    const PortClaim outer = Claim();
    const auto failing = [this] {
        const PortClaim inner = Claim();
        Lines lines;
        mLink.InputText(lines, false, 10);
    };
    EXPECT_RAISED_FROM(failing(), "1008 Datalink:InputText");
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_TRUE(mSerial.PortOpen());
}

TEST_F(PortOwnership, TwoErrorsUnderOneClaimReleaseItOnce) {
    const PortClaim outer = Claim();
    {
        const PortClaim inner = Claim();
        Lines lines;
        EXPECT_RAISED(mLink.InputText(lines, false, 10), 1008);
        EXPECT_RAISED(mLink.InputText(lines, false, 10), 1008);
        EXPECT_EQ(mLink.UseCount(), 1);
    }
    EXPECT_EQ(mLink.UseCount(), 1);
}

TEST_F(PortOwnership, AnErrorWithoutAClaimLeavesTheTerminals) {
    mLink.SetTerminalActive(true);
    Lines lines;
    EXPECT_RAISED(mLink.InputText(lines, false, 10), 1008);
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(PortOwnership, AnErrorClearsTheExclusiveMark) {
    mLink.SetImmediateMode(true);
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    EXPECT_RAISED(mLink.AcquirePort(true), 1008) << "nobody answers the handshake";
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mLink.UseCount(), 0);
}

// -- The terminal

TEST_F(PortOwnership, ShowingTheTerminalOpensThePortAndSendsNothing) {
    mLink.SetTerminalActive(true);
    EXPECT_TRUE(mLink.TerminalActive());
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_EQ(mPortStates, std::vector{true});
    EXPECT_THAT(mMessages, IsEmpty());
}

TEST_F(PortOwnership, ShowingTwiceClaimsOnceAndHidingCloses) {
    mLink.SetTerminalActive(true);
    mLink.SetTerminalActive(true);
    EXPECT_EQ(mLink.UseCount(), 1);
    mLink.SetTerminalActive(false);
    mLink.SetTerminalActive(false);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(PortOwnership, CommandsUnderTheTerminalRaiseNoEventAndGiveTheModeBack) {
    mLink.SetTerminalActive(true);
    {
        const PortClaim claim = Claim();
        EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToLink);
        EXPECT_EQ(mLink.UseCount(), 2);
    }
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mPortStates, std::vector{true});
}

TEST_F(PortOwnership, AShowRefusedByTheMarkComesWhenItEnds) {
    mDialogs.mOnSettings = [this](clsDataLink& link) {
        link.SetTerminalActive(true);
        EXPECT_TRUE(link.TerminalActive());
        EXPECT_FALSE(mSerial.PortOpen());
        return std::int16_t{2};
    };
    mLink.ShowSettingsDlg();
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(PortOwnership, AHideUnderTheMarkIsPaidWhenItEnds) {
    mLink.SetTerminalActive(true);
    mDialogs.mOnSettings = [this](clsDataLink& link) {
        link.SetTerminalActive(false);
        EXPECT_TRUE(mSerial.PortOpen());
        return std::int16_t{2};
    };
    mLink.ShowSettingsDlg();
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(PortOwnership, AHostsReleaseUnderTheMarkIsPaidWhenItEnds) {
    Claim().Detach();
    mDialogs.mOnSettings = [](clsDataLink& link) {
        link.ReleasePort();
        return std::int16_t{2};
    };
    mLink.ShowSettingsDlg();
    EXPECT_EQ(mLink.UseCount(), 0);
}

// -- A device that goes away

TEST_F(PortOwnership, ALostDeviceIsReportedAndTheNextClaimOpensItAgain) {
    Claim().Detach();
    mSerial.Vanish();
    mLoop.Yield(1);
    EXPECT_FALSE(mLink.ImmediateMode()) << "the printer may have been switched off";
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
    {
        const PortClaim claim = Claim();
        EXPECT_TRUE(mSerial.PortOpen());
        EXPECT_EQ(mPortStates, (std::vector{true, false, true}));
    }
    mLink.ReleasePort();
    EXPECT_EQ(mPortStates, (std::vector{true, false, true, false}));
}

TEST_F(PortOwnership, ClosingALostPortReportsItOnce) {
    Claim().Detach();
    mSerial.Vanish();
    mLoop.Yield(1);
    mLink.ReleasePort();
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(PortOwnership, TheTerminalIsNotHeldUpByAFarSideThatDoesNotAnswer) {
    mLink.SetTerminalActive(true);
    mSerial.Vanish();
    mSerial.mReachable = false;
    int opened = 0;
    mSerial.mOnOpen = [&] { ++opened; };
    for (int second = 0; second < 5; ++second)
        mLoop.Yield(1100);
    EXPECT_EQ(opened, 0);
    mSerial.mReachable = true;
    for (int second = 0; second < 2; ++second)
        mLoop.Yield(1100);
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(mSerial.PortOpen());
}

TEST_F(PortOwnership, TheTerminalComesBackWithItsDevice) {
    mLink.SetTerminalActive(true);
    mSerial.Vanish();
    bool away = true;
    mSerial.mOnOpen = [&] {
        if (away) throw QNError(SerialErrNoSuchPort, "PDQComm", "away");
    };
    for (int second = 0; second < 5; ++second)
        mLoop.Yield(1100);
    EXPECT_FALSE(mSerial.PortOpen());
    away = false;
    for (int second = 0; second < 2; ++second)
        mLoop.Yield(1100);
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mPortStates, (std::vector{true, false, true}));
}

// -- The end

TEST_F(PortOwnership, TearDownClosesWithoutAnEventAndMayBeRepeated) {
    mLink.SetTerminalActive(true);
    mLink.TearDown();
    mLink.TearDown();
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_FALSE(mSerial.HasSink());
    EXPECT_EQ(mPortStates, std::vector{true});
    EXPECT_TRUE(mLink.AutoConnectBaudrates().IsEmpty());
    EXPECT_TRUE(mLink.FrameFormats().IsEmpty());
    EXPECT_RAISED(mLink.AcquirePort(), 91);
    EXPECT_RAISED(mLink.OutputText("x"), 91);
}

TEST_F(PortOwnership, TearDownFromAnEventLeavesNothingBehind) {
    mOnPortState = [this](bool open) {
        if (!open) mLink.TearDown();
    };
    { const PortClaim claim = Claim(); }
    EXPECT_FALSE(mSerial.PortOpen());
}

} // namespace
} // namespace qncomm::testing

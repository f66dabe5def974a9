#include "LinkFixture.h"

namespace qncomm::testing {
namespace {

class Reentrancy : public LinkFixture {
  protected:
    /// Runs an exchange during whose wait the host does something.
    void DuringAnExchange(const std::function<void()>& host) {
        PortClaim claim = Claim();
        mSerial.Expect("X\r\n").Reply("X\r\n", 10).Reply("Ok\r\n", 500);
        mLink.OutputText("X\r\n");
        mLoop.After(100, host);
        Lines lines;
        EXPECT_EQ(mLink.InputText(lines), 2);
        claim.Release();
    }
};

TEST_F(Reentrancy, ClaimsAndSearchesFromAWaitAreRefusedQuietly) {
    bool ran = false;
    DuringAnExchange([&] {
        ran = true;
        EXPECT_FALSE(mLink.AcquirePort());
        EXPECT_FALSE(mLink.AutoConnect(1));
        EXPECT_EQ(mLink.UseCount(), 1);
    });
    EXPECT_TRUE(ran);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Reentrancy, ClaimsFromTheEventsOfAClaimAreRefused) {
    mOnPortState = [this](bool) { EXPECT_FALSE(mLink.AcquirePort()); };
    { const PortClaim claim = Claim(); }
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(Reentrancy, IdentityReadFromAWaitIsEmptyAndSendsNothing) {
    DuringAnExchange([&] { EXPECT_EQ(mLink.ModelText(), ""); });
}

TEST_F(Reentrancy, AShowDuringAnExchangeComesWhenItEnds) {
    DuringAnExchange([&] {
        mLink.SetTerminalActive(true);
        EXPECT_TRUE(mLink.TerminalActive());
        EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToLink);
    });
    EXPECT_EQ(mLink.UseCount(), 1);
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
}

TEST_F(Reentrancy, AHideDuringAnExchangeComesWhenItEnds) {
    mLink.SetTerminalActive(true);
    DuringAnExchange([&] { mLink.SetTerminalActive(false); });
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(Reentrancy, AShowAndHideDuringAnExchangeCancelOut) {
    DuringAnExchange([&] {
        mLink.SetTerminalActive(true);
        mLink.SetTerminalActive(false);
    });
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
}

TEST_F(Reentrancy, AnEndOfTheProgramUnwindsEveryClaim) {
    const auto ended = [this] {
        const PortClaim outer = Claim();
        const PortClaim inner = Claim();
        mLoop.After(10, [] { throw OperationCancelled(); });
        Lines lines;
        mLink.InputText(lines);
    };
    EXPECT_THROW(ended(), OperationCancelled);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_TRUE(Claim()) << "and the link can be used again";
}

TEST_F(Reentrancy, AnErrorOfAHostsHandlerLeavesNothingClaimed) {
    mOnPortState = [](bool open) {
        if (open) throw QNError(5, "host", "handler");
    };
    mLink.SetImmediateMode(true);
    EXPECT_RAISED_FROM(mLink.AcquirePort(), "5 host");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

} // namespace
} // namespace qncomm::testing

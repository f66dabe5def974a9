#include "PrinterFixture.h"

namespace qncomm::testing {
namespace {

using Forwarding = PrinterFixture;

TEST_F(Forwarding, AnOpenedPortStaysClaimedUntilItIsClosed) {
    mSerial.Handshake();
    EXPECT_TRUE(mQuorin.PortOpen());
    EXPECT_EQ(mLink.UseCount(), 1);
    Script("NEW");
    mQuorin.NewProgram();
    EXPECT_EQ(mLink.UseCount(), 1) << "operations in between nest";
    mQuorin.PortClose();
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(Forwarding, ARefusedPortIsNotClaimed) {
    RefusePort();
    EXPECT_FALSE(mQuorin.PortOpen());
    GrantPort();
}

TEST_F(Forwarding, AnErrorInANestedOperationLeavesTheHostsClaim) {
    mSerial.Handshake();
    ASSERT_TRUE(mQuorin.PortOpen());
    Script("NEW", {"Error 37: Busy"});
    EXPECT_RAISED(mQuorin.NewProgram(), 60037);
    EXPECT_EQ(mLink.UseCount(), 1);
    mQuorin.PortClose();
}

TEST_F(Forwarding, IdentityIsTheLinks) {
    ScriptIdentity("R7G", "Quorin  v7.20 (b)");
    EXPECT_EQ(mQuorin.PrinterType(), "R7G");
    EXPECT_EQ(mQuorin.FirmwareVersion(), "Quorin v7.20 (b)");
    EXPECT_EQ(mQuorin.FirmwareVersionNumber(), "7.20");
}

TEST_F(Forwarding, IdentityIsEmptyWhenThePortIsRefused) {
    RefusePort();
    EXPECT_EQ(mQuorin.PrinterType(), "");
    EXPECT_EQ(mQuorin.FirmwareVersionNumber(), "");
    GrantPort();
}

TEST_F(Forwarding, OutputTextSendsAsItIsAndEmptiesTheText) {
    mSerial.Handshake();
    ASSERT_TRUE(mQuorin.PortOpen());
    mSerial.Expect("no line end");
    std::string text = "no line end";
    mQuorin.OutputText(text);
    EXPECT_EQ(text, "");
    mQuorin.PortClose();
}

TEST_F(Forwarding, TheSettingsObjectIsTheLinks) {
    EXPECT_EQ(mQuorin.RegSettings(), mSettings);
    const auto other = std::make_shared<MemorySettings>();
    mQuorin.SetRegSettings(other);
    EXPECT_EQ(mLink.RegSettings(), other);
}

TEST_F(Forwarding, TheSettingsDialogsAnswerIsPassedBack) {
    EXPECT_EQ(mQuorin.ShowSettingsDlg(), 2);
    EXPECT_EQ(mDialogs.mSettingsShown, 1);
}

TEST_F(Forwarding, ASearchIsTheLinksAndIsRefusedWhileAnotherOperationIsAlone) {
    RefusePort();
    EXPECT_FALSE(mQuorin.DoAutoconnect());
    GrantPort();
}

TEST_F(Forwarding, ASearchRunsOnTheCurrentPort) {
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    EXPECT_FALSE(mQuorin.DoAutoconnect());
    EXPECT_EQ(mSerial.PortNumber(), 1);
    EXPECT_THAT(mSerial.mSent, ::testing::HasSubstr("PRINT\"HELLO\""));
}

TEST_F(Forwarding, AfterTearDownEveryMemberThatNeedsTheLinkRaises91) {
    KnowCleanDevices("R7A");
    mQuorin.TearDown();
    mQuorin.TearDown();
    std::string text;
    EXPECT_RAISED(mQuorin.PrinterType(), 91);
    EXPECT_RAISED(mQuorin.PortOpen(), 91);
    EXPECT_RAISED(mQuorin.PortClose(), 91);
    EXPECT_RAISED(mQuorin.Kill("ram:X"), 91);
    EXPECT_RAISED(mQuorin.OutputText(text), 91);
    EXPECT_RAISED(mQuorin.RegSettings(), 91);
    EXPECT_RAISED(mQuorin.Reboot(), 91);
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
}

} // namespace
} // namespace qncomm::testing

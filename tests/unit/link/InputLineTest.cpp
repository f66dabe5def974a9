// What a broken session has left in the printer's input line.

#include "SearchFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* Handshake = "PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2";

class DistrustedLine : public SearchFixture {
  protected:
    DistrustedLine() : SearchFixture({.spoil = true}) {}
};

TEST_F(DistrustedLine, IsMadeNonsenseBeforeTheSearchEndsIt) {
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_THAT(mSerial.mSent, StartsWith(")(\x11\rIMMEDIATE ON")) << "at each combination";
    EXPECT_EQ(mHeard.front(), ")(");
    EXPECT_EQ(std::count(mHeard.begin(), mHeard.end(), ")("), 1);
    EXPECT_EQ(mHeard.back(), Handshake);
}

TEST_F(DistrustedLine, IsFoundOnASlowLineThatComplainsOfIt) {
    mSettingsThatWork = "2400,n,8,2";
    mAnswersAfter = 120; // the complaint alone takes longer than a silent line is waited for
    mVersion = "1.0\r\nR7A\r\n";
    mSetup = SetupOf("UART1");
    mSetup.front() = "UART1,BAUDRATE,2400";
    EXPECT_FALSE(mLink.AcquirePort()) << "an answer is waited for as long as ever";
    mAnswersAfter = 20;
    EXPECT_TRUE(mLink.AcquirePort());
}

TEST_F(DistrustedLine, IsTrustedOnceThePrinterHasAnswered) {
    EXPECT_TRUE(mLink.AcquirePort());
    mHeard.clear();
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_THAT(mHeard, ElementsAre(Handshake));
}

TEST_F(DistrustedLine, IsDistrustedAgainWhenTheDeviceWasAway) {
    PortClaim claim = mLink.AcquirePort();
    mSerial.Vanish();
    mLoop.Yield(10);
    claim.Release();
    mHeard.clear();
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(mHeard.front(), ")(");
}

class InputLine : public LinkFixture {};

TEST_F(InputLine, OfAnUnknownSessionIsTrustedUnlessTheHostAsks) {
    EXPECT_TRUE(Claim());
}

TEST_F(InputLine, ThatThisLinkHasLeftUnendedIsSpoiledByTheNextClaim) {
    PortClaim claim = Claim();
    mSerial.Expect("CLL:PT\"X\":PF");
    mLink.OutputText("CLL:PT\"X\":PF");
    claim.Release();
    mSerial.Expect(")(\r\n").Reply("CLL:PT\"X\":PF)(\r\nError 19: Syntax error\r\nOk\r\n");
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort()) << "and the complaint is nobody's error";
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort());
}

TEST_F(InputLine, ThatHasEndedIsNotTouched) {
    PortClaim claim = Claim();
    mSerial.Expect("PRINT 1\r");
    mLink.OutputText("PRINT 1\r");
    mLink.EndUnfinishedLine();
    claim.Release();
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort());
}

TEST_F(InputLine, CanBeEndedInTheMiddleOfAnOperation) {
    PortClaim claim = Claim();
    mSerial.Expect("10 PRI)(\r\n");
    mLink.OutputText("10 PRI");
    mLink.EndUnfinishedLine();
    mLink.EndUnfinishedLine();
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(InputLine, ThatIsStillOnItsWayIsDroppedAndSpoiled) {
    PortClaim claim = Claim();
    mSerial.Expect("PRINT 1\r");
    mLink.OutputText("PRINT 1\r");
    mSerial.mLineTimeLeft = 60'000;
    mSerial.mFlushes.clear();
    mSerial.Expect(")(\r\nEND\r\n");
    EXPECT_GT(mLink.EndUnfinishedLine("END\r\n"), 2000) << "some of it is in another buffer";
    EXPECT_THAT(mSerial.mFlushes, ::testing::Contains("Transmit"));
    EXPECT_TRUE(mSerial.ScriptDone());
}

} // namespace
} // namespace qncomm::testing

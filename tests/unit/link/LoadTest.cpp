// Loads that break off.

#include "LinkFixture.h"

#include <algorithm>
#include <optional>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string Command = "FILE& LOAD \"X\",5000\r";

class Load : public LinkFixture {
  protected:
    /// A load of 5000 bytes of which so many were sent when it broke off, at 9600 baud.
    void BreakOffAfter(std::size_t sent) {
        mLink.SetBaudrate("9600");
        mClaim.emplace(Claim());
        mSerial.Expect(Command).Reply("FILE& LOAD \"X\",5000\r\n");
        mLink.OutputText(std::string(Command));
        mLink.BeginLoad(5000);
        for (std::size_t left = sent; left > 0;) {
            const std::size_t piece = std::min<std::size_t>(left, 500);
            mSerial.Expect(std::string(piece, 'x'));
            mLink.OutputText(std::string(piece, 'x'));
            left -= piece;
        }
        EXPECT_EQ(mLink.LoadSize(), 5000U);
        EXPECT_EQ(mLink.LoadBytes(), 0U) << "no time has passed";
        mLink.Delay(6000);
        EXPECT_EQ(mLink.LoadBytes(), sent);
    }
    /// As the transmit buffer takes them.
    void ExpectZeros(std::size_t count) { mSerial.Expect(std::string(count, '\0')); }

    std::optional<PortClaim> mClaim;
};

TEST_F(Load, ThatLacksLittleIsFilledUp) {
    BreakOffAfter(4000);
    ExpectZeros(1000);
    mSerial.Arrive("Ok\r\n", 1500);
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Stored);
    EXPECT_EQ(mLink.DeafMs(), 0);
    EXPECT_THAT(mMessages, IsEmpty());
}

TEST_F(Load, ThatIsFilledUpAndRefusedHasLeftNothing) {
    BreakOffAfter(4999);
    ExpectZeros(1);
    mSerial.Arrive("Error 1041: Not an image\r\nOk\r\n", 100);
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Dropped);
}

TEST_F(Load, ThatLacksMuchEndsBySilenceWhichIsSaid) {
    BreakOffAfter(500);
    const std::size_t sent = mSerial.mSent.size();
    mSerial.Arrive("Error 1028: Time-out while receiving data\r\nOk\r\n", 5000);
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Dropped);
    EXPECT_EQ(mLoop.NowMs() - begun, 5000);
    EXPECT_EQ(mSerial.mSent.size(), sent);
    EXPECT_THAT(mMessages, ElementsAre("The printer stays deaf for up to 10 s: it waits for the "
                                       "rest of a load -1"));
    EXPECT_EQ(mLink.DeafMs(), 0);
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort());
}

TEST_F(Load, WhoseWaitIsCancelledTooMakesTheNextClaimWait) {
    BreakOffAfter(500);
    mLoop.After(2000, [] { throw OperationCancelled(); });
    EXPECT_THROW(mLink.GiveUpLoad(), OperationCancelled);
    EXPECT_GT(mLink.DeafMs(), 7000);
    const std::int64_t begun = mLoop.NowMs();
    mSerial.Arrive("Error 1028: Time-out while receiving data\r\nOk\r\n", 3000);
    mSerial.OnSend([&](std::string& sent) {
        EXPECT_GE(mLoop.NowMs(), begun + 3000) << "a byte more would make it wait longer";
        mSerial.Arrive(sent + "-1\r\n2\r\nOk\r\n");
        sent.clear();
    });
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(mLink.DeafMs(), 0);
}

TEST_F(Load, ThatIsWholeNeedsNothing) {
    BreakOffAfter(5000);
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Whole);
    EXPECT_EQ(mLink.LoadBytes(), 5000U) << "until the next one";
}

TEST_F(Load, OnALineThatTakesNothingSaysThatThePrinterIsDeaf) {
    BreakOffAfter(500);
    mSerial.mDrainPerMs = 0;
    mSerial.Expect("y");
    EXPECT_RAISED(mLink.OutputText("y"), 1007);
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Deaf);
    EXPECT_EQ(mLoop.NowMs(), begun);
    EXPECT_GT(mLink.DeafMs(), 9000);
}

} // namespace
} // namespace qncomm::testing

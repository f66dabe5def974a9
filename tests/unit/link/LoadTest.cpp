// Loads that break off.

#include "SearchFixture.h"

#include <algorithm>
#include <optional>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const std::string Command = "FILE& LOAD \"X\",5000\r";

class Load : public LinkFixture {
  protected:
    /// A load of 5000 bytes of which so many were sent when it broke off, at 9600 baud.
    void BreakOffAfter(std::size_t sent) {
        mLink.SetBaudrate("9600");
        mClaim.emplace(Claim());
        mSerial.Expect(Command).Reply("FILE& LOAD \"X\",5000\r\n");
        mLink.BeginLoad(Command, 5000, "KILL \"X\"");
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
    mSerial.Exchange("KILL \"X\"");
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

TEST_F(Load, ThatWasRepliedToNeedsNothing) {
    BreakOffAfter(5000);
    mSerial.Arrive("Ok\r\n", 10);
    Lines reply;
    mLink.InputText(reply);
    const std::size_t sent = mSerial.mSent.size();
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Whole);
    EXPECT_EQ(mLink.LoadBytes(), 5000U) << "until the next one";
    EXPECT_EQ(mSerial.mSent.size(), sent);
}

TEST_F(Load, ThatIsAllOnItsWayIsAwaitedAndUndone) {
    BreakOffAfter(5000);
    mSerial.mLineTimeLeft = 4000;
    mSerial.Arrive("Ok\r\n", 4500);
    mSerial.Exchange("KILL \"X\"");
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Stored);
    EXPECT_THAT(mMessages, ElementsAre("The printer stays deaf for up to 14 s: it waits for the "
                                       "rest of a load -1"));
    EXPECT_EQ(mLink.DeafMs(), 0);
}

TEST_F(Load, ThatALineTakesLongForIsLeftAtOnceToTheNextClaim) {
    BreakOffAfter(5000);
    mSerial.mLineTimeLeft = 60'000;
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Deaf);
    EXPECT_EQ(mLoop.NowMs(), begun);
    EXPECT_EQ(mLink.DeafMs(), 70'001);
    EXPECT_THAT(mMessages, ElementsAre("The printer stays deaf for up to 70 s: it waits for the "
                                       "rest of a load -1"));
}

TEST_F(Load, ThatWasNotRepliedToInTimeIsAFailedExchangeAndNoDeafPrinter) {
    BreakOffAfter(5000);
    Lines reply;
    EXPECT_RAISED(mLink.InputText(reply), 1008);
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Whole);
    EXPECT_EQ(mLink.DeafMs(), 0);
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

// -- The note of a load, for who comes after a death in it

constexpr const char* Section = "Connection COM1";
const std::string Undo = "KILL \"X\"";

/// A link that remembers the printer of its port, at 57600 baud.
class NotedLoad : public SearchFixture {
  protected:
    NotedLoad() : SearchFixture({.remembered = true, .spoil = true}) {
        for (const auto& [key, value] : {std::pair{"Baudrate", "57600"},
                                         {"Parity", "None"},
                                         {"Databits", "8"},
                                         {"Stopbits", "2"},
                                         {"FlowControl", "0"},
                                         {"Channel", "1"}})
            mSettings->WriteValue(Section, key, value);
        mLink.SetRegSettings(mSettings);
    }

    /// A program that died has noted so many bytes, of which the printer lacks these.
    void Leave(std::size_t bytes, std::size_t missing) {
        mSettings->WriteValue(Section, "Load", std::to_string(bytes));
        mSettings->WriteValue(Section, "LoadUndo", Undo);
        mLoadMissing = missing;
    }
    std::string Noted() const { return mSettings->ReadValue(Section, "Load", ""); }
    /// How many zeros were sent.
    std::ptrdiff_t Zeros() const {
        return std::count(mSerial.mSent.begin(), mSerial.mSent.end(), '\0');
    }
};

TEST_F(NotedLoad, StandsInTheStoreUntilThePrinterHasReplied) {
    ASSERT_TRUE(mLink.AutoConnect(1));
    const PortClaim claim = mLink.AcquirePort();
    EXPECT_EQ(Noted(), "");
    mSerial.OnSend([&](std::string& sent) {
        EXPECT_EQ(Noted(), "3") << "before a byte of its command";
        mSerial.Arrive(std::exchange(sent, {}));
    });
    mLink.BeginLoad("FILE& LOAD \"X\",3\r", 3, Undo);
    EXPECT_EQ(mSettings->ReadValue(Section, "LoadUndo", ""), Undo);
    mSerial.OnSend([&](std::string& sent) {
        sent.clear();
        mSerial.Arrive("\r\nOk\r\n");
    });
    mLink.OutputText("abc");
    EXPECT_EQ(Noted(), "3");
    Lines reply;
    mLink.InputText(reply);
    EXPECT_EQ(Noted(), "");
}

TEST_F(NotedLoad, OfALittleIsFilledUpByTheNextProgramAndUndone) {
    Leave(3000, 700);
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(Zeros(), 3000);
    EXPECT_EQ(mLoadMissing, 0U);
    EXPECT_THAT(mHeard, Contains(Undo));
    EXPECT_EQ(Noted(), "");
    EXPECT_THAT(mMessages,
                ElementsAre("A load of 3000 bytes was broken off: bringing the printer back -1",
                            StartsWith("Printer connected through UART1")));
}

TEST_F(NotedLoad, ThatThePrinterRefusesInTheEndNeedsNoUndo) {
    Leave(3000, 700);
    mLoadEnd = "Error 1041: Not an image\r\nOk\r\n";
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_THAT(mHeard, Not(Contains(Undo)));
    EXPECT_EQ(Noted(), "");
}

TEST_F(NotedLoad, OfMuchIsWaitedForInSilenceWhichIsSaid) {
    Leave(50'000, 40'000);
    mLoop.After(9000, [&] {
        EXPECT_EQ(Zeros(), 0);
        mLoadMissing = 0;
        mSerial.Arrive("Error 1028: Time-out while receiving data\r\nOk\r\n");
    });
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(Zeros(), 0);
    EXPECT_THAT(mMessages, Contains("The printer stays deaf for up to 20 s: it waits for the rest "
                                    "of a load -1"));
    EXPECT_THAT(mMessages, Not(Contains(HasSubstr("Searching"))));
    EXPECT_EQ(Noted(), "");
}

TEST_F(NotedLoad, ThatEndsByItselfMeanwhileIsHeardOut) {
    Leave(50'000, 0);
    mSerial.Arrive("Error 1028: Time-out while receiving data\r\nOk\r\n", 3);
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_THAT(mMessages, ElementsAre(StartsWith("Printer connected through UART1")));
}

TEST_F(NotedLoad, OfAPrinterThatAnswersIsForgottenAndNothingFilled) {
    Leave(3000, 0);
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(Zeros(), 0);
    EXPECT_THAT(mHeard, ElementsAre(")(", StartsWith("IMMEDIATE ON")));
    EXPECT_EQ(Noted(), "");
}

TEST_F(NotedLoad, OfAPrinterThatIsAwayCostsOneWaitAndThenASearch) {
    Leave(3000, 1'000'000);
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_FALSE(mLink.AcquirePort());
    EXPECT_LT(mLoop.NowMs() - begun, 10'000);
    EXPECT_THAT(mMessages, Contains(HasSubstr("were not answered. Searching...")));
    EXPECT_EQ(Noted(), "");
}

TEST_F(NotedLoad, StaysNotedWhenThePersonDoesNotWaitForIt) {
    Leave(50'000, 40'000);
    mLoop.After(2000, [] { throw OperationCancelled(); });
    EXPECT_THROW(static_cast<void>(mLink.AcquirePort()), OperationCancelled);
    EXPECT_EQ(Noted(), "50000");
}

TEST_F(NotedLoad, ThatWasGivenUpIsNotedNoLonger) {
    ASSERT_TRUE(mLink.AutoConnect(1));
    const PortClaim claim = mLink.AcquirePort();
    mLink.BeginLoad("FILE& LOAD \"X\",3\r", 3);
    mLoadMissing = 3;
    EXPECT_EQ(Noted(), "3");
    EXPECT_EQ(mLink.GiveUpLoad(), LoadEnd::Stored);
    EXPECT_EQ(Noted(), "");
}

TEST_F(Load, IsNotedNowhereByALinkThatRemembersNothing) {
    BreakOffAfter(500);
    EXPECT_EQ(mSettings->ReadValue(Section, "Load", "none"), "none");
}

} // namespace
} // namespace qncomm::testing

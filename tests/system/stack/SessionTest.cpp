// A link and a printer over a longer time: exchanges, errors, the terminal, a reboot, a cut line.

#include "testing/core/ExpectRaised.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using Lines = std::vector<std::string>;
using ::testing::Contains;
using ::testing::HasSubstr;

class StackSession : public ::testing::Test {
  protected:
    ManualReactor mReactor;
    Stack mStack{mReactor, "sim:R7G?boot-ms=4000"};
};

TEST_F(StackSession, AThousandExchangesLeaveNothingBehind) {
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(mStack.Ask("PRINT " + std::to_string(i)).at(1), std::to_string(i));
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_FALSE(mStack.mSerial.PortOpen());
}

TEST_F(StackSession, ThePrintersErrorIsRaisedWithItsNumber) {
    const int number = NumberRaisedBy([&] { mStack.Ask("PRINT 1/0"); });
    EXPECT_GT(number, 60000);
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_EQ(mStack.Ask("PRINT 1"), (Lines{"PRINT 1", "1", "Ok"}));
}

TEST_F(StackSession, TheTerminalShowsWhatIsTypedAndCommandsStayOutOfIt) {
    ASSERT_TRUE(mStack.mLink.AutoConnect(1));
    mStack.mLink.SetTerminalActive(true);
    mStack.mSerial.TypeKeys("PRINT 5\r");
    mReactor.Pass(200);
    EXPECT_THAT(mStack.mTerminalText, HasSubstr("5\r\nOk\r\n"));
    mStack.mTerminalText.clear();
    mStack.Ask("PRINT 6");
    EXPECT_EQ(mStack.mTerminalText, "");
    EXPECT_EQ(mStack.mPortStates, std::vector{true});
}

TEST_F(StackSession, ARebootComesBackAndTheLinkGoesOn) {
    ASSERT_EQ(mStack.mLink.ModelText(), "R7G");
    mStack.mLink.Reboot();
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    mStack.mLink.SetImmediateMode(false);
    EXPECT_EQ(mStack.Ask("PRINT 1"), (Lines{"PRINT 1", "1", "Ok"}));
}

TEST_F(StackSession, ARebootLongerThanEveryWaitIsWaitedFor) {
    Stack slow(mReactor, "sim:R7G?boot-ms=90000");
    ASSERT_EQ(slow.mLink.ModelText(), "R7G");
    const std::int64_t start = mReactor.NowMs();
    slow.mLink.Reboot();
    EXPECT_GE(mReactor.NowMs() - start, 90'000);
    EXPECT_LE(mReactor.NowMs() - start, 110'000);
}

TEST_F(StackSession, ARebootWaitsForDsr) {
    mStack.mLink.SetDSRDetectActive(true);
    ASSERT_EQ(mStack.mLink.ModelText(), "R7G");
    mStack.mLink.Reboot();
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
}

TEST_F(StackSession, ACutLineIsReportedAndNothingHangs) {
    Stack cut(mReactor, "sim:R7G?cut=20000");
    const auto untilCut = [&] {
        for (int i = 0; i < 1000; ++i)
            cut.Ask("PRINT " + std::to_string(i));
    };
    EXPECT_RAISED(untilCut(), 1024);
    EXPECT_EQ(cut.mLink.UseCount(), 0);
    ASSERT_TRUE(cut.mSerial.LastFailure());
    EXPECT_THAT(cut.mSerial.LastFailure()->description, HasSubstr("cut"));
    EXPECT_RAISED_FROM(cut.mLink.OutputText("x"), "1024 Datalink:OutputText");
}

TEST_F(StackSession, APrinterThatDoesNotEchoIsNotFound) {
    // Its reply lacks the echo; the search still finds HELLO, and the identification must refuse
    // it. No noise may come in the place of the echo.
    Stack silent(mReactor, "sim:R7G?no-echo=on&noise=0");
    EXPECT_RAISED_FROM(silent.mLink.ModelText(), "1000 Datalink:GetVersion");
    EXPECT_FALSE(silent.mLink.ImmediateMode());
    EXPECT_EQ(silent.mLink.UseCount(), 0);
}

TEST_F(StackSession, AnExchangeOnASlowLineTakesItsTimeAndArrives) {
    Stack slow(mReactor, "sim:R7G?baud=2400&format=n,7,2&paced=on");
    EXPECT_EQ(slow.Ask("PRINT 1"), (Lines{"PRINT 1", "1", "Ok"}));
    const std::string text(200, 'x');
    EXPECT_EQ(slow.Ask("PRINT \"" + text + "\"").at(1), text);
}

} // namespace
} // namespace qncomm::testing

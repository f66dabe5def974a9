// The control with its real serial control and grid: what is typed, shown, captured, and its end.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"

#include <filesystem>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Assembly = AssembledFixture;

TEST_F(Assembly, ShowsThePrintersAnswerToWhatIsTyped) {
    Show().DoAutoconnect();
    EXPECT_EQ(Type("PRINT 5\r"), "PRINT 5\r\n5\r\nOk");
    EXPECT_GT(mScreen.mChanges, 0);
    EXPECT_GT(mScreen.mFocused, 0);
}

TEST_F(Assembly, HasAGridOf300By300AtRunTimeAndLaysItOut) {
    EXPECT_EQ(mAssembly->Grid().Rows(), 300);
    EXPECT_EQ(mAssembly->Grid().Columns(), 300);
    EXPECT_EQ(mScreen.mPlace, (Rectangle{0, 50, 800, 950}));
}

TEST_F(Assembly, KeepsTheExchangesOfOperationsOffTheScreen) {
    Show().DoAutoconnect();
    Control().Clear();
    EXPECT_EQ(Control().PrinterType(), "R7G");
    mReactor.Pass(1000);
    EXPECT_EQ(Screen(), "");
    EXPECT_EQ(Type("PRINT 6\r"), "PRINT 6\r\n6\r\nOk");
}

TEST_F(Assembly, TakesNoKeysWhileAnOperationHasThePortOrItIsClosed) {
    EXPECT_EQ(mAssembly->Viewport().Type("x"), 0U);
    Show();
    std::size_t taken = 99;
    const Subscription status = Control().StatusEvent.Connect(
        [&](std::string&, std::int16_t, bool&) { taken = mAssembly->Viewport().Type("x"); });
    Control().DoAutoconnect();
    EXPECT_EQ(taken, 0U);
}

TEST_F(Assembly, AppendsWhatIsShownToTheCaptureFile) {
    Show().DoAutoconnect();
    const std::string path = mFolder.File("session.txt");
    Control().SetCaptureToFile(path);
    Type("PRINT 7\r");
    EXPECT_THAT(ContentOf(path), HasSubstr("PRINT 7\r\n7\r\nOk\r\n"));
}

TEST_F(Assembly, RefusesACaptureWhereNoFileCanBeAndGoesOnWithTheOneThatRan) {
    Show().DoAutoconnect();
    const std::string path = mFolder.File("session.txt");
    Control().SetCaptureToFile(path);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetCaptureToFile(mFolder.File("none/a.txt")); }),
              RtPathNotFound);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetCaptureToFile(mFolder.Path()); }),
              RtPathFileAccess);
    Type("PRINT 8\r");
    EXPECT_THAT(ContentOf(path), HasSubstr("PRINT 8"));
}

TEST_F(Assembly, SaysOnceWhatEndedACaptureAndGoesOn) {
    if (!std::filesystem::exists("/dev/full")) GTEST_FAIL() << "/dev/full is needed";
    Show().DoAutoconnect();
    Control().SetCaptureToFile("/dev/full");
    EXPECT_EQ(Type("PRINT 9\r"), "PRINT 9\r\n9\r\nOk");
    Type("PRINT 9\r");
    ASSERT_EQ(mScreen.mFailures.size(), 1U);
    EXPECT_THAT(mScreen.mFailures[0], HasSubstr("/dev/full: "));
}

TEST_F(Assembly, RefusesAGridThatCannotBe) {
    EXPECT_EQ(NumberRaisedBy([&] { mAssembly->Viewport().SetRows(0); }), RtInvalidCall);
    EXPECT_EQ(mAssembly->Grid().Rows(), 300);
}

TEST_F(Assembly, OpensThePortForAHostAndRaisesWhatKeepsItFromOpening) {
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
    mAssembly->OpenPort();
    EXPECT_TRUE(mAssembly->Serial().PortOpen());
    EXPECT_FALSE(mAssembly->Serial().LastFailure());
    Assemble(mFolder.File("no-device"));
    const int number = NumberRaisedBy([&] { mAssembly->OpenPort(); });
    ASSERT_TRUE(mAssembly->Serial().LastFailure());
    EXPECT_EQ(mAssembly->Serial().LastFailure()->number, number);
    EXPECT_THAT(mAssembly->Serial().LastFailure()->description, HasSubstr("no-device"));
}

TEST_F(Assembly, ShowsTextInTheGridAsIfTheLineHadBroughtIt) {
    Show();
    std::string received;
    const Subscription text =
        mAssembly->Viewport().Received.Connect([&](std::string_view bytes) { received += bytes; });
    const int changes = mScreen.mChanges;
    mAssembly->Viewport().Show("shown\r\n");
    EXPECT_EQ(received, "shown\r\n");
    EXPECT_EQ(mAssembly->Grid().Row(mAssembly->Grid().CursorRow() - 1).text, "shown");
    EXPECT_GT(mScreen.mChanges, changes);
}

TEST_F(Assembly, HandsOutEachChangeOfTheGridOnce) {
    TerminalChanges changes = mAssembly->Changes();
    changes.TakeDamage();
    mAssembly->Viewport().Show("a\a");
    EXPECT_FALSE(changes.TakeDamage().rows.empty());
    EXPECT_TRUE(changes.TakeDamage().Empty());
    EXPECT_TRUE(changes.TakeBell());
    EXPECT_FALSE(changes.TakeBell());
}

TEST_F(Assembly, MayGoInsideAnEventOfASearch) {
    const Subscription status = Control().StatusEvent.Connect(
        [&](std::string&, std::int16_t, bool&) { mAssembly.reset(); });
    QNComm& control = Control();
    try {
        control.DoAutoconnect();
    } catch (const QNError& error) { // what the operation makes of the end is its own business
        SUCCEED() << error.Description();
    }
    EXPECT_EQ(mAssembly, nullptr);
    mReactor.Pass(100);
    Assemble("sim:R7G");
    EXPECT_TRUE(Control().DoAutoconnect());
}

TEST_F(Assembly, MayGoWhenThePortStateChanges) {
    const Subscription state = Control().PortStateEvent.Connect([&](bool&) { mAssembly.reset(); });
    QNComm& control = Control();
    control.UserControl_Show();
    EXPECT_EQ(mAssembly, nullptr);
    mReactor.Pass(100);
}

TEST_F(Assembly, ShowsNothingOfAControlThatIsGone) {
    Show().DoAutoconnect();
    mAssembly.reset();
    const int changes = mScreen.mChanges;
    mReactor.Pass(5000);
    EXPECT_EQ(mScreen.mChanges, changes);
}

} // namespace
} // namespace qncomm::testing

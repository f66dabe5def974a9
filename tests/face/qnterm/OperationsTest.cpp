// How operations are run for actions: one at a time, told when they fail, ended when cancelled.

#include "PartsFixture.h"

#include "PrinterActions.h"

namespace qncomm::testing {

using namespace qnterm;
namespace {

using qncomm::QNComm;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using OperationsTest = PartsFixture;

TEST_F(OperationsTest, OneThatEndsWellIsToldByItsTitle) {
    std::string model;
    EXPECT_TRUE(mOperations.Run("Ask", [&](QNComm& control) { model = control.PrinterType(); }));
    EXPECT_EQ(model, "R7G");
    EXPECT_THAT(mDone, ElementsAre("Ask"));
    EXPECT_FALSE(mOperations.Running());
}

TEST_F(OperationsTest, AnErrorIsToldAndNothingElse) {
    EXPECT_FALSE(mOperations.Run("Delete", [](QNComm& control) { control.KillQN("c:NONE"); }));
    EXPECT_THAT(mFailures, ElementsAre(HasSubstr("Delete: ")));
    EXPECT_THAT(mDone, IsEmpty());
    EXPECT_FALSE(mOperations.Running());
}

TEST_F(OperationsTest, WorkThatAPersonAgreedToOnAFormerPrinterIsNotDoneOnAnother) {
    QWidget window;
    window.show();
    PrinterActions actions(mOperations, &window);
    Control().PrinterType();
    for (void (PrinterActions::*ask)() : {&PrinterActions::Reboot, &PrinterActions::NewProgram}) {
        mFailures.clear();
        ChangePort();
        (actions.*ask)();
        ChangePort("1");
        TakeSent();
        Agree();
        EXPECT_THAT(mFailures, ElementsAre(HasSubstr("another printer")));
        EXPECT_EQ(TakeSent(), "");
    }
}

TEST_F(OperationsTest, ASecondOneIsRefusedWhileTheFirstRuns) {
    bool inner = true;
    int refused = 0;
    QObject::connect(&mOperations, &Operations::Refused, &mOperations, [&] { ++refused; });
    mOperations.Run("Outer", [&](QNComm&) { inner = mOperations.Run("Inner", [](QNComm&) {}); });
    EXPECT_FALSE(inner);
    EXPECT_EQ(refused, 1);
    EXPECT_THAT(mDone, ElementsAre("Outer"));
}

TEST_F(OperationsTest, CancelReachesWhatReportsItsProgress) {
    QObject::connect(&mOperations, &Operations::Progress, &mOperations, [&](const QString&, int p) {
        if (p > 0) mOperations.Cancel();
    });
    std::string text;
    for (int line = 0; line < 300; ++line)
        text += "PRINT " + std::to_string(line) + "\r\n";
    const bool done = mOperations.Run("Upload", [&](QNComm& control) {
        qncomm::ModuleUploadArgs args{
            .sSourcePath = "LONG.PRG", .sTargetPath = {}, .sModuleText = text};
        control.ModuleUpload(args);
    });
    EXPECT_FALSE(done);
    EXPECT_THAT(mDone, ElementsAre("Upload: cancelled"));
    EXPECT_GT(mCancelWaits, 0);
    EXPECT_LT(qncomm::SplitKeepEmpty(TakeSent(), qncomm::CrLf).size(), 250U)
        << "what was left of the module was typed all the same";
}

TEST_F(OperationsTest, AWaitThatIsEndedCountsAsCancelledAndNotAsFailed) {
    EXPECT_FALSE(mOperations.Run("Wait", [](QNComm&) { throw qncomm::OperationCancelled(); }));
    EXPECT_THAT(mDone, ElementsAre("Wait: cancelled"));
    EXPECT_THAT(mFailures, IsEmpty());
}

TEST_F(OperationsTest, NothingStartsOnceTheWindowIsGoing) {
    mOperations.Shut();
    bool ran = false;
    EXPECT_FALSE(mOperations.Run("Late", [&](QNComm&) { ran = true; }));
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace qncomm::testing

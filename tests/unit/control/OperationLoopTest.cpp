#include "OperationLoop.h"

#include "common/QNError.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::ManualLoop;

constexpr std::int32_t AnHour = 3'600'000;

/// An operation that does not end by itself.
[[noreturn]] void WaitForEver(OperationLoop& loop) {
    while (true)
        loop.Yield(AnHour);
}

class Operations : public ::testing::Test {
  protected:
    ManualLoop mLoop;
    OperationLoop mOperations{mLoop};
};

TEST_F(Operations, OneThatStillWaitsAfterTheGraceIsEndedOnce) {
    const std::int64_t start = mLoop.NowMs();
    mLoop.After(10, [this] { mOperations.Cancel(2000); });
    EXPECT_THROW(WaitForEver(mOperations), OperationCancelled);
    EXPECT_EQ(mLoop.NowMs() - start, 2010);
    EXPECT_NO_THROW(mOperations.Yield(AnHour)) << "what unwinds may still wait";
}

TEST_F(Operations, AnotherCancelDoesNotLengthenTheGrace) {
    const std::int64_t start = mLoop.NowMs();
    mLoop.After(10, [this] { mOperations.Cancel(2000); });
    mLoop.After(1000, [this] { mOperations.Cancel(2000); });
    EXPECT_THROW(WaitForEver(mOperations), OperationCancelled);
    EXPECT_EQ(mLoop.NowMs() - start, 2010);
}

TEST_F(Operations, OneWithinTheWaitOfAnotherEndsFirst) {
    std::string ended;
    mLoop.After(10, [&] {
        mOperations.Cancel(0);
        EXPECT_THROW(WaitForEver(mOperations), OperationCancelled);
        ended += "inner ";
    });
    EXPECT_THROW(WaitForEver(mOperations), OperationCancelled);
    EXPECT_EQ(ended, "inner ");
}

TEST_F(Operations, OfAnotherOnTheSameLoopGoOn) {
    OperationLoop others(mLoop);
    bool done = false;
    mLoop.After(10, [&] {
        mOperations.Cancel(0);
        for (int turn = 0; turn < 100; ++turn)
            EXPECT_NO_THROW(others.Yield(1000));
        done = true;
    });
    EXPECT_THROW(WaitForEver(mOperations), OperationCancelled);
    EXPECT_TRUE(done);
}

TEST_F(Operations, TheNextAreLeftAlone) {
    mOperations.Cancel(0);
    EXPECT_THROW(mOperations.Yield(0), OperationCancelled);
    mOperations.Forget();
    EXPECT_NO_THROW(mOperations.Yield(AnHour));
    mOperations.Cancel(0);
    EXPECT_THROW(mOperations.Yield(0), OperationCancelled) << "and can be ended as before";
}

class CancelledControl : public ControlFixture {};

TEST_F(CancelledControl, EndsItsOperationAndCanBeUsedAgain) {
    Run().PrinterType();
    mControl->CancelOperations(0); // nothing runs
    EXPECT_NO_THROW(mControl->ChDir("c:"));
    mSilent = true;
    mLoop.After(5, [this] {
        EXPECT_TRUE(mControl->IsBusy());
        mControl->CancelOperations(100);
    });
    EXPECT_THROW(mControl->Reboot(), OperationCancelled);
    EXPECT_FALSE(mControl->IsBusy());
    EXPECT_FALSE(mSerial.PortOpen());
    mSilent = false;
    EXPECT_EQ(mControl->PrinterType(), "R7G");
}

TEST_F(CancelledControl, EndsItsOperationAlsoWhenItIsGone) {
    Run().PrinterType();
    mSilent = true;
    mLoop.After(5, [this] {
        mControl->CancelOperations(100);
        mControl.reset();
    });
    EXPECT_ANY_THROW(mControl->Reboot());
    EXPECT_FALSE(mSerial.PortOpen());
}

} // namespace
} // namespace qncomm

#include "console/TransferProgress.h"
#include "testing/core/ManualLoop.h"

#include <gmock/gmock.h>

#include <sstream>
#include <vector>

namespace {

using qncomm::StatusLine;
using qncomm::TransferProgress;
using qncomm::TransferReading;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// What one reading told, as the percentage and the bytes.
using Told = std::vector<std::pair<std::int32_t, std::int64_t>>;

class Progress : public testing::Test {
  protected:
    void Move(std::int32_t ms, std::int64_t bytes) {
        mMoved.bytes += bytes;
        for (const std::int64_t end = mLoop.NowMs() + ms; mLoop.NowMs() < end;)
            mLoop.Yield(static_cast<std::int32_t>(end - mLoop.NowMs()));
    }

    qncomm::testing::ManualLoop mLoop;
    std::ostringstream mScreen;
    StatusLine mStatus{mScreen, StatusLine::Style::Transient, 80};
    TransferProgress::Moved mMoved;
    std::vector<TransferReading> mReadings;
    Told mTold;
    TransferProgress mProgress{mLoop, mStatus, [this] { return mMoved; },
                               [this](const TransferReading& reading) {
                                   mReadings.push_back(reading);
                                   mTold.emplace_back(reading.percent.value_or(-1), reading.bytes);
                               }};
};

TEST_F(Progress, ShowsBarRateAndTimeLeft) {
    mMoved = {100, 10'000};
    mProgress.Show("Uploading a.bin", 1);
    Move(1000, 2000);
    mProgress.Show("Uploading a.bin", 21);
    EXPECT_THAT(mScreen.str(),
                EndsWith("\r[####................] 21 % Uploading a.bin  2.0 kB/s, 0:04 left"
                         "\x1B[K"));
}

TEST_F(Progress, TheOperationsOwnPercentageServesWithoutASize) {
    mProgress.Show("Downloading a.bin", 50);
    EXPECT_EQ(mScreen.str(), "\r[##########..........] 50 % Downloading a.bin\x1B[K");
}

TEST_F(Progress, EndOfTheOperationShowsTheMessageAlone) {
    mMoved = {10'000, 10'000};
    mProgress.Show("Uploading a.bin", 100);
    Move(1000, 0);
    mProgress.Show("Uploading a.bin", -1);
    EXPECT_THAT(mScreen.str(), EndsWith("\rUploading a.bin\x1B[K"));
}

TEST_F(Progress, ReportsEachPercentOnce) {
    mMoved.size = 10'000;
    for (int i = 0; i < 6; ++i) {
        mProgress.Show("x", 1);
        Move(100, 50);
    }
    EXPECT_THAT(mTold, ElementsAre(std::pair(0, 50), std::pair(1, 100), std::pair(2, 200)));
}

TEST_F(Progress, ReportsAtMostTenTimesASecond) {
    mMoved = {0, 1'000'000};
    for (int i = 0; i < 1000; ++i) { // a percent every 10 ms
        Move(1, 1000);
        mProgress.Show("x", 1);
    }
    EXPECT_EQ(mReadings.size(), 11U) << "and the last byte at once";
    EXPECT_EQ(mTold.back(), std::pair(100, std::int64_t{1'000'000}));
}

TEST_F(Progress, ReportsOnceASecondBetweenPercents) {
    mMoved = {0, 1'000'000};
    for (int i = 0; i < 4; ++i)
        Move(1000, 960); // no message of the operation comes
    EXPECT_THAT(mTold, ElementsAre(std::pair(0, 960), std::pair(0, 1920), std::pair(0, 2880),
                                   std::pair(0, 3840)));
    EXPECT_EQ(mReadings.back().rate, 960);
    EXPECT_EQ(mReadings.back().secondsLeft, 1038);
}

TEST_F(Progress, ReportsNothingBeforeTheFirstByteAndAfterTheLast) {
    mMoved.size = 5000;
    Move(10'000, 0);
    mProgress.Show("Uploading a.bin", 1);
    EXPECT_THAT(mTold, IsEmpty());
    mMoved.bytes = 5000;
    Move(10'000, 0);
    EXPECT_THAT(mTold, ElementsAre(std::pair(100, std::int64_t{5000})));
}

TEST_F(Progress, RateOfAStalledLineFallsOnTheScreenByItself) {
    mMoved = {1000, 100'000};
    mProgress.Show("Uploading a.bin", 1);
    Move(1000, 1000);
    mProgress.Show("Uploading a.bin", 2);
    EXPECT_THAT(mScreen.str(), HasSubstr("1.0 kB/s"));
    mScreen.str("");
    Move(8000, 0);
    EXPECT_THAT(mScreen.str(), EndsWith("Uploading a.bin  0 B/s\x1B[K"));
}

TEST_F(Progress, TellsTheWholeTransfersTimeAndMeanRate) {
    mMoved = {1000, 41'000};
    mProgress.Show("Uploading a.bin", 1);
    Move(2000, 30'000);
    mProgress.Show("Uploading a.bin", 75);
    Move(8000, 10'000);
    EXPECT_EQ(mProgress.Whole().bytes, 41'000);
    EXPECT_EQ(mProgress.Whole().rate, 4000);
    EXPECT_EQ(mProgress.ElapsedMs(), 10'000);
}

TEST_F(Progress, ElsewhereThanAtATerminalTheRateMakesNoNewLines) {
    mStatus.SetStyle(StatusLine::Style::Lines);
    mMoved = {1000, 41'000};
    for (int i = 0; i < 5; ++i) {
        mProgress.Show("Uploading a.bin", i);
        Move(1000, 100);
    }
    EXPECT_EQ(mScreen.str(), "Uploading a.bin\n");
    EXPECT_THAT(mScreen.str(), Not(HasSubstr("B/s")));
}

} // namespace

#include "console/TransferMeter.h"

#include <gtest/gtest.h>

namespace {

using qncomm::RateText;
using qncomm::TransferMeter;
using qncomm::TransferReading;

constexpr std::int64_t MiB = 1024 * 1024;

TEST(TransferMeter, TellsPercentRateAndSecondsLeft) {
    TransferMeter meter;
    meter.At(1000, 1000, 10'000);
    const TransferReading reading = meter.At(2000, 3000, 10'000);
    EXPECT_EQ(reading.bytes, 3000);
    EXPECT_EQ(reading.size, 10'000);
    EXPECT_EQ(reading.percent, 30);
    EXPECT_EQ(reading.rate, 2000);
    EXPECT_EQ(reading.secondsLeft, 4) << "7000 bytes take 3.5 s";
}

TEST(TransferMeter, HasNoRateBeforeHalfASecond) {
    TransferMeter meter;
    EXPECT_EQ(meter.At(0, 100, MiB).rate, std::nullopt);
    EXPECT_EQ(meter.At(499, 5000, MiB).rate, std::nullopt);
    EXPECT_EQ(meter.At(499, 5000, MiB).secondsLeft, std::nullopt);
    EXPECT_EQ(meter.At(500, 5100, MiB).rate, 10'000);
}

TEST(TransferMeter, WithoutASizeTellsBytesAndRateAlone) {
    TransferMeter meter;
    meter.At(0, 100, 0);
    const TransferReading reading = meter.At(1000, 1100, 0);
    EXPECT_EQ(reading.rate, 1000);
    EXPECT_EQ(reading.size, std::nullopt);
    EXPECT_EQ(reading.percent, std::nullopt);
    EXPECT_EQ(reading.secondsLeft, std::nullopt);
}

TEST(TransferMeter, RateIsThatOfTheLastFiveSeconds) {
    TransferMeter meter;
    std::int64_t now = 0;
    std::int64_t bytes = 1;
    for (; now < 60'000; now += 100, bytes += 1000)
        meter.At(now, bytes, MiB);
    EXPECT_EQ(meter.At(now, bytes, MiB).rate, 10'000);
    for (const std::int64_t end = now + 2500; now < end; now += 100)
        meter.At(now, bytes, MiB);
    EXPECT_NEAR(static_cast<double>(*meter.At(now, bytes, MiB).rate), 5000, 500)
        << "half of the window is the stall";
    for (const std::int64_t end = now + 5000; now < end; now += 100)
        meter.At(now, bytes, MiB);
    EXPECT_EQ(meter.At(now, bytes, MiB).rate, 0);
    EXPECT_EQ(meter.At(now, bytes, MiB).secondsLeft, std::nullopt) << "nobody knows";
}

TEST(TransferMeter, MillionsOfLooksKeepAFewSamples) {
    TransferMeter meter;
    for (std::int64_t look = 0; look < 1'000'000; ++look)
        meter.At(look / 1000, look + 1, MiB);
    EXPECT_EQ(meter.At(1000, 1'000'001, MiB).rate, 1'000'000);
}

TEST(TransferMeter, WhatAnEarlierTryLeftDoesNotCountAsTravelled) {
    TransferMeter meter;
    EXPECT_EQ(meter.At(0, 0, 100'000).bytes, 0) << "nothing has come yet";
    meter.At(8000, 90'000, 100'000);
    EXPECT_EQ(meter.At(9000, 92'000, 100'000).rate, 2000);
    EXPECT_EQ(meter.Whole(10'000, 100'000, 100'000).rate, 5000);
}

TEST(TransferMeter, BytesBeyondTheSizeAreAHundredPercent) {
    TransferMeter meter;
    meter.At(0, 100, 1000);
    const TransferReading reading = meter.At(1000, 1100, 1000);
    EXPECT_EQ(reading.percent, 100);
    EXPECT_EQ(reading.secondsLeft, 0);
}

TEST(TransferMeter, BytesThatAreSentAgainAreNoNegativeRate) {
    TransferMeter meter;
    meter.At(0, 5000, 10'000);
    EXPECT_EQ(meter.At(1000, 4000, 10'000).rate, 0);
}

TEST(RateText, IsShortAndReadable) {
    TransferReading reading;
    EXPECT_EQ(RateText(reading), "");
    reading.rate = 960;
    EXPECT_EQ(RateText(reading), "960 B/s");
    reading.secondsLeft = 7;
    EXPECT_EQ(RateText(reading), "960 B/s, 0:07 left");
    reading.rate = 11'349;
    reading.secondsLeft = 85;
    EXPECT_EQ(RateText(reading), "11.3 kB/s, 1:25 left");
    reading.rate = 45'600'000;
    reading.secondsLeft = 3905;
    EXPECT_EQ(RateText(reading), "45.6 MB/s, 1:05:05 left");
}

} // namespace

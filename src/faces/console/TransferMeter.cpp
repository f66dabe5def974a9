#include "console/TransferMeter.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qncomm {
namespace {

constexpr std::int64_t WindowMs = 5000;
constexpr std::int64_t BetweenSamplesMs = 250;
constexpr std::int64_t ShortestMs = 500; ///< a rate of less time would jump about

std::optional<std::int64_t> RateBetween(std::int64_t ms, std::int64_t bytes) {
    if (ms < ShortestMs) return std::nullopt;
    return std::max<std::int64_t>(bytes, 0) * 1000 / ms;
}

TransferReading ReadingOf(std::int64_t bytes, std::int64_t size, std::optional<std::int64_t> rate) {
    TransferReading reading{
        .bytes = bytes, .size = {}, .percent = {}, .rate = rate, .secondsLeft = {}};
    if (size <= 0) return reading;
    const std::int64_t left = std::max<std::int64_t>(size - bytes, 0);
    reading.size = size;
    reading.percent = static_cast<std::int32_t>(std::min(bytes, size) * 100 / size);
    if (rate && *rate > 0) reading.secondsLeft = (left + *rate - 1) / *rate;
    return reading;
}

std::string Formatted(const char* format, double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string SpeedText(std::int64_t rate) {
    constexpr double kilo = 1000;
    const auto value = static_cast<double>(rate);
    if (value < kilo) return std::to_string(rate) + " B/s";
    if (value < kilo * kilo) return Formatted("%.1f kB/s", value / kilo);
    return Formatted("%.1f MB/s", value / kilo / kilo);
}

/// "0:07", "12:00", "1:05:00".
std::string DurationText(std::int64_t seconds) {
    const auto two = [](std::int64_t value) {
        return (value < 10 ? "0" : "") + std::to_string(value);
    };
    const std::int64_t hours = seconds / 3600;
    const std::int64_t minutes = seconds / 60 % 60;
    const std::string start =
        hours > 0 ? std::to_string(hours) + ":" + two(minutes) : std::to_string(minutes);
    return start + ":" + two(seconds % 60);
}

} // namespace

std::string RateText(const TransferReading& reading) {
    if (!reading.rate) return {};
    std::string text = SpeedText(*reading.rate);
    if (reading.secondsLeft) text += ", " + DurationText(*reading.secondsLeft) + " left";
    return text;
}

TransferReading TransferMeter::At(std::int64_t lNowMs, std::int64_t lBytes, std::int64_t lSize) {
    if (lBytes <= 0) return ReadingOf(0, lSize, {});
    if (!mFirst) mFirst = Sample{lNowMs, lBytes};
    if (mWindow.empty() || lNowMs - mWindow.back().ms >= BetweenSamplesMs)
        mWindow.push_back({lNowMs, lBytes});
    // The oldest one kept is as old as the window is long, or the next one would be younger.
    while (mWindow.size() > 1 && lNowMs - mWindow[1].ms >= WindowMs)
        mWindow.pop_front();
    const Sample& oldest = mWindow.front();
    return ReadingOf(lBytes, lSize, RateBetween(lNowMs - oldest.ms, lBytes - oldest.bytes));
}

TransferReading TransferMeter::Whole(std::int64_t lNowMs, std::int64_t lBytes,
                                     std::int64_t lSize) const {
    const Sample first = mFirst.value_or(Sample{lNowMs, lBytes});
    return ReadingOf(lBytes, lSize, RateBetween(lNowMs - first.ms, lBytes - first.bytes));
}

} // namespace qncomm

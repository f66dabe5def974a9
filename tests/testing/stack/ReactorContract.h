#pragma once

#include "platform/Fd.h"
#include "platform/Reactor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <functional>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace qncomm::testing {

/// What every reactor on the machine's own clock does. A test program makes a suite of it with
/// INSTANTIATE_TYPED_TEST_SUITE_P for a type that a default constructor makes.
template <class Loop>
class ReactorContract : public ::testing::Test {};

TYPED_TEST_SUITE_P(ReactorContract);

/// A pipe that a test fills and empties byte by byte.
struct TestPipe {
    TestPipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("no pipe");
        out.Reset(ends[0]);
        in.Reset(ends[1]);
    }
    void Put() const { EXPECT_EQ(::write(in.Get(), "x", 1), 1); }
    void Take() const {
        char byte = 0;
        EXPECT_EQ(::read(out.Get(), &byte, 1), 1);
    }

    Fd out;
    Fd in;
};

constexpr std::int32_t AnHourMs = 3'600'000; ///< a test that waited for it would hang

TYPED_TEST_P(ReactorContract, AYieldEndsWithWhatIsDueAndNotWithItsLimit) {
    TypeParam loop;
    const TestPipe pipe;
    int calls = 0;
    const auto watch = loop.Watch(pipe.out.Get(), {.readable = true}, [&](FdEvents events) {
        EXPECT_TRUE(events.readable);
        pipe.Take();
        ++calls;
    });
    pipe.Put();
    loop.Yield(AnHourMs);
    EXPECT_EQ(calls, 1);
    loop.Yield(0);
    EXPECT_EQ(calls, 1);
}

TYPED_TEST_P(ReactorContract, AlarmsRunOnceInOrderOfTime) {
    TypeParam loop;
    std::string order;
    const auto second = loop.CreateAlarm([&] { order += "second "; });
    const auto first = loop.CreateAlarm([&] { order += "first "; });
    const auto never = loop.CreateAlarm([&] { order += "never "; });
    const std::int64_t now = loop.NowUs();
    second->SetDue(now - 1);
    first->SetDue(now - 2);
    never->SetDue(now - 3);
    never->Clear();
    loop.Yield(AnHourMs);
    EXPECT_EQ(order, "first second ");
    loop.Yield(0);
    EXPECT_EQ(order, "first second ");
}

TYPED_TEST_P(ReactorContract, AnAlarmWakesTheLoopWhenItIsDue) {
    TypeParam loop;
    bool rang = false;
    const auto alarm = loop.CreateAlarm([&] { rang = true; });
    const std::int64_t due = loop.NowUs() + 2000;
    alarm->SetDue(due);
    while (!rang)
        loop.Yield(AnHourMs);
    EXPECT_GE(loop.NowUs(), due);
}

TYPED_TEST_P(ReactorContract, ATimerRunsUntilItsObjectGoes) {
    TypeParam loop;
    int ticks = 0;
    std::unique_ptr<RunningTimer> timer;
    timer = loop.StartTimer(1, [&] {
        if (++ticks == 3) timer.reset();
    });
    while (ticks < 3)
        loop.Yield(AnHourMs);
    loop.Yield(3);
    EXPECT_EQ(ticks, 3);
}

TYPED_TEST_P(ReactorContract, AHandlerMayEndItsOwnWatchAndAlarm) {
    TypeParam loop;
    const TestPipe pipe;
    std::string seen;
    std::unique_ptr<FdWatch> watch;
    watch = loop.Watch(pipe.out.Get(), {.readable = true}, [&](FdEvents) {
        watch.reset();
        seen += "watch ";
    });
    std::unique_ptr<Alarm> alarm;
    alarm = loop.CreateAlarm([&] {
        alarm.reset();
        seen += "alarm ";
    });
    pipe.Put();
    alarm->SetDue(loop.NowUs());
    loop.Yield(0);
    loop.Yield(0);
    EXPECT_EQ(seen, "alarm watch ");
}

TYPED_TEST_P(ReactorContract, AHandlerMayYieldAndIsNotCalledTwice) {
    TypeParam loop;
    const TestPipe left;
    const TestPipe right;
    std::vector<std::string> seen;
    const auto one = loop.Watch(left.out.Get(), {.readable = true}, [&](FdEvents) {
        left.Take();
        seen.emplace_back("left");
        loop.Yield(0);
        seen.emplace_back("left ends");
    });
    const auto two = loop.Watch(right.out.Get(), {.readable = true}, [&](FdEvents) {
        right.Take();
        seen.emplace_back("right");
    });
    left.Put();
    right.Put();
    loop.Yield(0);
    EXPECT_THAT(seen, ::testing::ElementsAre("left", "right", "left ends"));
}

TYPED_TEST_P(ReactorContract, AWatchForNothingReportsNothingNotEvenAHangUp) {
    TypeParam loop;
    TestPipe pipe;
    std::vector<bool> hangUps;
    const auto watch =
        loop.Watch(pipe.out.Get(), {}, [&](FdEvents events) { hangUps.push_back(events.hungUp); });
    pipe.in.Reset();
    loop.Yield(1);
    EXPECT_THAT(hangUps, ::testing::IsEmpty());
    watch->Want({.readable = true});
    loop.Yield(AnHourMs);
    EXPECT_THAT(hangUps, ::testing::ElementsAre(true));
}

TYPED_TEST_P(ReactorContract, AnErrorOfAHandlerReachesTheCallerAndTheLoopGoesOn) {
    TypeParam loop;
    bool rang = false;
    const auto failing = loop.CreateAlarm([] { throw std::runtime_error("handler"); });
    const auto alarm = loop.CreateAlarm([&] { rang = true; });
    failing->SetDue(loop.NowUs() - 2);
    alarm->SetDue(loop.NowUs() - 1);
    EXPECT_THROW(loop.Yield(0), std::runtime_error);
    loop.Yield(0);
    EXPECT_TRUE(rang);
}

TYPED_TEST_P(ReactorContract, AWaitForOneDescriptorDispatchesNothing) {
    TypeParam loop;
    const TestPipe pipe;
    const auto alarm = loop.CreateAlarm([] { FAIL() << "dispatched"; });
    alarm->SetDue(loop.NowUs());
    pipe.Put();
    EXPECT_TRUE(loop.WaitFor(pipe.out.Get(), {.readable = true}, 3'600'000'000).readable);
    pipe.Take();
    EXPECT_FALSE(loop.WaitFor(pipe.out.Get(), {.readable = true}, 0).Any());
    EXPECT_FALSE(loop.WaitFor(-1, {}, 100).Any());
}

REGISTER_TYPED_TEST_SUITE_P(ReactorContract, AYieldEndsWithWhatIsDueAndNotWithItsLimit,
                            AlarmsRunOnceInOrderOfTime, AnAlarmWakesTheLoopWhenItIsDue,
                            ATimerRunsUntilItsObjectGoes, AHandlerMayEndItsOwnWatchAndAlarm,
                            AHandlerMayYieldAndIsNotCalledTwice,
                            AWatchForNothingReportsNothingNotEvenAHangUp,
                            AnErrorOfAHandlerReachesTheCallerAndTheLoopGoesOn,
                            AWaitForOneDescriptorDispatchesNothing);

} // namespace qncomm::testing

// A loop within somebody else's: one descriptor tells that it has something to do.

#include "platform/HostedLoop.h"
#include "common/QNError.h"
#include "testing/stack/ReactorContract.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <poll.h>

namespace qncomm::testing {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(HostedLoop, ReactorContract, HostedLoop);

bool Readable(const HostedLoop& loop, int limitMs = 0) {
    pollfd entry{loop.Handle(), POLLIN, 0};
    return ::poll(&entry, 1, limitMs) == 1;
}

TEST(HostedLoop, ItsDescriptorIsReadableWhileAWatchIsReady) {
    HostedLoop loop;
    const TestPipe pipe;
    const auto watch =
        loop.Watch(pipe.out.Get(), {.readable = true}, [&](FdEvents) { pipe.Take(); });
    EXPECT_FALSE(Readable(loop));
    pipe.Put();
    EXPECT_TRUE(Readable(loop));
    loop.Yield(0);
    EXPECT_FALSE(Readable(loop));
}

TEST(HostedLoop, ItsDescriptorBecomesReadableWhenAnAlarmIsDue) {
    HostedLoop loop;
    int calls = 0;
    const auto alarm = loop.CreateAlarm([&] { ++calls; });
    alarm->SetDue(loop.NowUs() + 1000);
    loop.Arm();
    EXPECT_TRUE(Readable(loop, AnHourMs));
    loop.Yield(0);
    loop.Arm();
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(Readable(loop));
}

TEST(HostedLoop, ACancelWakesASleepAndIsHeardOnce) {
    int heard = 0;
    HostedLoop loop({.cancelled = [&] { ++heard; }});
    loop.Cancel();
    EXPECT_TRUE(Readable(loop));
    loop.Yield(AnHourMs);
    loop.Yield(0);
    EXPECT_EQ(heard, 1);
    EXPECT_FALSE(Readable(loop));
}

TEST(HostedLoop, ACancelThatWasForgottenIsNotHeard) {
    int heard = 0;
    HostedLoop loop({.cancelled = [&] { ++heard; }});
    loop.Cancel();
    loop.ForgetCancel();
    loop.Yield(0);
    EXPECT_EQ(heard, 0);
}

TEST(HostedLoop, ACancelEndsAWaitThatDispatchesNothingOnceAndForAll) {
    HostedLoop loop;
    loop.Cancel();
    EXPECT_THROW(loop.WaitFor(-1, {}, std::int64_t{AnHourMs} * 1000), OperationCancelled);
    EXPECT_FALSE(loop.WaitFor(-1, {}, 1000).Any()); // what unwinds may still wait
}

TEST(HostedLoop, AByteInItsPipeWakesASleepAndIsToldAsASignal) {
    int told = 0;
    HostedLoop loop({.signalled = [&] { ++told; }});
    ASSERT_EQ(::write(loop.WakeHandle(), "x", 1), 1);
    loop.Yield(AnHourMs);
    EXPECT_EQ(told, 1);
    ASSERT_EQ(::write(loop.WakeHandle(), "xx", 2), 2);
    EXPECT_FALSE(loop.WaitFor(-1, {}, 1000).Any());
    EXPECT_EQ(told, 2);
    EXPECT_FALSE(Readable(loop));
}

TEST(HostedLoop, ASignalThatEndsASleepIsTold) {
    int told = 0;
    HostedLoop loop({.signalled = [&] { ++told; }});
    struct sigaction former {};
    struct sigaction quiet {};
    quiet.sa_handler = [](int) {};
    ::sigaction(SIGUSR1, &quiet, &former);
    const auto asleep = [&] { // the signal comes while the loop sleeps, from a timer of the system
        const timer_t none{};
        timer_t timer = none;
        sigevent event{};
        event.sigev_notify = SIGEV_SIGNAL;
        event.sigev_signo = SIGUSR1;
        ::timer_create(CLOCK_MONOTONIC, &event, &timer);
        itimerspec soon{};
        soon.it_value.tv_nsec = 1'000'000;
        soon.it_interval.tv_nsec = 1'000'000; // again, should the first come too early
        ::timer_settime(timer, 0, &soon, nullptr);
        while (told == 0)
            loop.Yield(AnHourMs);
        ::timer_delete(timer);
    };
    asleep();
    ::sigaction(SIGUSR1, &former, nullptr);
    EXPECT_GE(told, 1);
}

} // namespace
} // namespace qncomm::testing

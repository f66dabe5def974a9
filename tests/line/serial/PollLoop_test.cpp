// The loop sleeps until something is due, and signals reach it.

#include "common/QNError.h"
#include "platform/Interrupt.h"
#include "platform/PollLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <stdexcept>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Pipe {
    Pipe() {
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

constexpr std::int32_t LongMs = 3'600'000; // an hour: a test that waited for it would hang

TEST(Loop, AYieldEndsWithWhatIsDueAndNotWithItsLimit) {
    PollLoop loop;
    const Pipe pipe;
    int calls = 0;
    const auto watch = loop.Watch(pipe.out.Get(), {.readable = true}, [&](FdEvents events) {
        EXPECT_TRUE(events.readable);
        pipe.Take();
        ++calls;
    });
    pipe.Put();
    loop.Yield(LongMs);
    EXPECT_EQ(calls, 1);
    loop.Yield(0);
    EXPECT_EQ(calls, 1);
}

TEST(Loop, AlarmsRunOnceInOrderOfTime) {
    PollLoop loop;
    std::string order;
    const auto second = loop.CreateAlarm([&] { order += "second "; });
    const auto first = loop.CreateAlarm([&] { order += "first "; });
    const auto never = loop.CreateAlarm([&] { order += "never "; });
    const std::int64_t now = loop.NowUs();
    second->SetDue(now - 1);
    first->SetDue(now - 2);
    never->SetDue(now - 3);
    never->Clear();
    loop.Yield(LongMs);
    EXPECT_EQ(order, "first second ");
    loop.Yield(0);
    EXPECT_EQ(order, "first second ");
}

TEST(Loop, AnAlarmWakesTheLoopWhenItIsDue) {
    PollLoop loop;
    bool rang = false;
    const auto alarm = loop.CreateAlarm([&] { rang = true; });
    const std::int64_t due = loop.NowUs() + 2000;
    alarm->SetDue(due);
    while (!rang)
        loop.Yield(LongMs);
    EXPECT_GE(loop.NowUs(), due);
}

TEST(Loop, ATimerRunsUntilItsObjectGoes) {
    PollLoop loop;
    int ticks = 0;
    std::unique_ptr<RunningTimer> timer;
    timer = loop.StartTimer(1, [&] {
        if (++ticks == 3) timer.reset();
    });
    while (ticks < 3)
        loop.Yield(LongMs);
    loop.Yield(3);
    EXPECT_EQ(ticks, 3);
}

TEST(Loop, AHandlerMayEndItsOwnWatchAndAlarm) {
    PollLoop loop;
    const Pipe pipe;
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

TEST(Loop, AHandlerMayYieldAndIsNotCalledTwice) {
    PollLoop loop;
    const Pipe left;
    const Pipe right;
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
    EXPECT_THAT(seen, ElementsAre("left", "right", "left ends"));
}

TEST(Loop, AWatchForNothingReportsNothingNotEvenAHangUp) {
    PollLoop loop;
    Pipe pipe;
    std::vector<bool> hangUps;
    const auto watch =
        loop.Watch(pipe.out.Get(), {}, [&](FdEvents events) { hangUps.push_back(events.hungUp); });
    pipe.in.Reset();
    loop.Yield(1);
    EXPECT_THAT(hangUps, IsEmpty());
    watch->Want({.readable = true});
    loop.Yield(LongMs);
    EXPECT_THAT(hangUps, ElementsAre(true));
}

TEST(Loop, AnErrorOfAHandlerReachesTheCallerAndTheLoopGoesOn) {
    PollLoop loop;
    bool rang = false;
    const auto failing = loop.CreateAlarm([] { throw std::runtime_error("handler"); });
    const auto alarm = loop.CreateAlarm([&] { rang = true; });
    failing->SetDue(loop.NowUs() - 2);
    alarm->SetDue(loop.NowUs() - 1);
    EXPECT_THROW(loop.Yield(0), std::runtime_error);
    loop.Yield(0);
    EXPECT_TRUE(rang);
}

TEST(Loop, AWaitForOneDescriptorDispatchesNothing) {
    PollLoop loop;
    const Pipe pipe;
    const auto alarm = loop.CreateAlarm([] { FAIL() << "dispatched"; });
    alarm->SetDue(loop.NowUs());
    pipe.Put();
    EXPECT_TRUE(loop.WaitFor(pipe.out.Get(), {.readable = true}, 3'600'000'000).readable);
    pipe.Take();
    EXPECT_FALSE(loop.WaitFor(pipe.out.Get(), {.readable = true}, 0).Any());
    EXPECT_FALSE(loop.WaitFor(-1, {}, 100).Any());
}

// -- Signals

TEST(Signals, ASignalWakesTheLoopAndRaisesTheFlag) {
    Interrupt interrupt;
    PollLoop loop(&interrupt);
    EXPECT_FALSE(interrupt.Raised());
    ::raise(SIGINT);
    loop.Yield(LongMs);
    EXPECT_TRUE(interrupt.Raised());
    EXPECT_EQ(interrupt.Signal(), SIGINT);
    interrupt.Clear();
    EXPECT_FALSE(interrupt.Raised());
    loop.Yield(0);
}

TEST(Signals, AnOperationThatGoesOnIsEndedAfterTheGracePeriod) {
    Interrupt interrupt;
    PollLoop loop(&interrupt, 5);
    ::raise(SIGTERM);
    const std::int64_t raised = loop.NowUs();
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
    EXPECT_GE(loop.NowUs() - raised, 5000);
    loop.Yield(0); // what unwinds may still yield
    loop.Yield(1);
}

TEST(Signals, TheGracePeriodAlsoRunsWhenAHandlerSawTheFlagFirst) {
    Interrupt interrupt;
    PollLoop loop(&interrupt, 1);
    ::raise(SIGINT);
    EXPECT_TRUE(interrupt.Raised());
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
}

TEST(Signals, ASecondSignalEndsTheOperationAtOnce) {
    Interrupt interrupt;
    PollLoop loop(&interrupt, LongMs);
    ::raise(SIGINT);
    loop.Yield(LongMs);
    loop.Yield(0);
    ::raise(SIGINT);
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
    loop.Yield(0);
    ::raise(SIGINT);
    ::raise(SIGTERM);
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
}

TEST(Signals, TheFormerHandlingIsBackWhenTheFlagGoes) {
    sigset_t before{};
    ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        const Interrupt interrupt;
        ::raise(SIGINT); // dropped, not delivered later
    }
    sigset_t after{};
    ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&before, SIGINT), sigismember(&after, SIGINT));
    EXPECT_EQ(sigismember(&after, SIGINT), 0);
}

} // namespace
} // namespace qncomm::testing

// The loop sleeps until something is due, and signals reach it.

#include "platform/PollLoop.h"
#include "common/QNError.h"
#include "platform/Interrupt.h"
#include "testing/stack/ReactorContract.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr std::int32_t LongMs = AnHourMs;

INSTANTIATE_TYPED_TEST_SUITE_P(PollLoop, ReactorContract, PollLoop);

TEST(StoppedProcess, SleepsNoLongerThanItWasTo) {
    const pid_t sleeper = ::fork();
    if (sleeper == 0) {
        PollLoop().Yield(1500);
        ::_exit(0);
    }
    PollLoop loop;
    loop.WaitFor(-1, {}, 300'000); // it sleeps by now
    ::kill(sleeper, SIGSTOP);
    loop.WaitFor(-1, {}, 1'400'000);
    ::kill(sleeper, SIGCONT);
    const std::int64_t goesOn = loop.NowUs();
    EXPECT_EQ(::waitpid(sleeper, nullptr, 0), sleeper);
    EXPECT_LT(loop.NowUs() - goesOn, 600'000) << "it had 1200 ms left when it was stopped";
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

TEST(Signals, OfTwoThatComeTogetherTheSecondEndsWhatTheFirstLetsUnwind) {
    Interrupt interrupt;
    PollLoop loop(&interrupt, 1);
    ::raise(SIGINT);
    ::raise(SIGTERM);
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
    EXPECT_THROW(while (true) loop.Yield(LongMs), OperationCancelled);
    loop.Yield(2);
    loop.Yield(0);
}

TEST(Signals, AWaitThatDispatchesNothingIsEndedAfterTheGracePeriodToo) {
    Interrupt interrupt;
    PollLoop loop(&interrupt, 20);
    constexpr std::int64_t hourUs = std::int64_t{LongMs} * 1000;
    const std::int64_t begun = loop.NowUs();
    ::raise(SIGHUP);
    EXPECT_THROW(loop.WaitFor(-1, {}, hourUs), OperationCancelled);
    EXPECT_GE(loop.NowUs() - begun, 20'000);
    EXPECT_FALSE(loop.WaitFor(-1, {}, hourUs).Any()) << "what unwinds waits as long at most";
    interrupt.Clear();
    EXPECT_FALSE(loop.WaitFor(-1, {}, 1000).Any());
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

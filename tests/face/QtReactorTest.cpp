// The reactor on Qt's own event loop keeps the contract of the plain one, and nothing that a
// handler throws gets into Qt.

#include "qt/QtReactor.h"
#include "common/QNError.h"
#include "testing/stack/ReactorContract.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <string>

namespace qncomm::testing {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(QtReactor, ReactorContract, QtReactor);

std::string TextOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return known.what();
    }
}

/// Spins the loop as exec() does until the condition holds.
template <class Condition>
void SpinUntil(const Condition& holds) {
    QEventLoop loop;
    while (!holds())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
}

TEST(QtReactorInALoop, AnAlarmAndAWatchAreServedByAnyEventLoop) {
    QtReactor reactor;
    const TestPipe pipe;
    bool rang = false;
    bool read = false;
    const auto alarm = reactor.CreateAlarm([&] { rang = true; });
    const auto watch = reactor.Watch(pipe.out.Get(), {.readable = true}, [&](FdEvents) {
        pipe.Take();
        read = true;
    });
    alarm->SetDue(reactor.NowUs() + 1500);
    pipe.Put();
    SpinUntil([&] { return rang && read; });
}

TEST(QtReactorInALoop, OneDescriptorCanBeWatchedTwice) {
    QtReactor reactor;
    const TestPipe pipe;
    int calls = 0;
    const auto count = [&](FdEvents) { ++calls; };
    const auto one = reactor.Watch(pipe.out.Get(), {.readable = true}, count);
    auto two = reactor.Watch(pipe.out.Get(), {.readable = true}, count);
    pipe.Put();
    reactor.Yield(0);
    EXPECT_GE(calls, 2);
    two.reset();
    calls = 0;
    reactor.Yield(AnHourMs);
    EXPECT_GE(calls, 1);
}

TEST(QtReactorInALoop, WithNoYieldToThrowItAnErrorGoesToTheErrorHandler) {
    std::string told;
    QtReactor reactor([&](const std::exception_ptr& error) { told = TextOf(error); });
    const auto alarm = reactor.CreateAlarm([] { throw std::runtime_error("handler"); });
    alarm->SetDue(reactor.NowUs());
    SpinUntil([&] { return !told.empty(); });
    EXPECT_EQ(told, "handler");
}

TEST(QtReactorInALoop, AnErrorInADialogsLoopIsNotKeptForTheYieldBelow) {
    std::string told;
    QEventLoop dialog;
    QtReactor reactor([&](const std::exception_ptr& error) {
        told = TextOf(error);
        dialog.quit();
    });
    const auto alarm = reactor.CreateAlarm([] { throw std::runtime_error("handler"); });
    QTimer::singleShot(0, &dialog, [&] {
        alarm->SetDue(reactor.NowUs());
        dialog.exec();
    });
    EXPECT_NO_THROW(while (told.empty()) reactor.Yield(AnHourMs));
    EXPECT_EQ(told, "handler");
}

TEST(QtReactorInALoop, AYieldDispatchesWhatTheToolkitHas) {
    QtReactor reactor;
    bool dispatched = false;
    const int level = QThread::currentThread()->loopLevel();
    QTimer::singleShot(2, QCoreApplication::instance(), [&] {
        dispatched = true;
        EXPECT_EQ(QThread::currentThread()->loopLevel(), level) << "a loop within the loop";
    });
    while (!dispatched)
        reactor.Yield(AnHourMs);
}

} // namespace
} // namespace qncomm::testing

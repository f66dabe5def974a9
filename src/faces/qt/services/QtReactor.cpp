#include "qt/QtReactor.h"

#include "qt/ErrorBox.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int64_t NeverUs = AlarmQueue::Never;
constexpr std::uint64_t OwnMark = 0; ///< no watch has this number
constexpr int MostReadyAtOnce = 32;
constexpr std::int64_t LongestBunchUs = 4000; // a click waits no longer for it
constexpr const char* ApplicationReactorName = "qncomm application reactor";

std::uint32_t EpollBits(FdEvents events) {
    return (events.readable ? EPOLLIN : 0U) | (events.writable ? EPOLLOUT : 0U);
}

FdEvents EventsOfEpoll(std::uint32_t bits) {
    return {(bits & EPOLLIN) != 0, (bits & EPOLLOUT) != 0, (bits & (EPOLLHUP | EPOLLERR)) != 0};
}

int NeededFd(int fd) {
    if (fd < 0) throw std::runtime_error("the system has no descriptors left");
    return fd;
}

void Register(int epoll, int operation, int fd, std::uint64_t mark, std::uint32_t bits) {
    epoll_event event{};
    event.events = bits;
    event.data.u64 = mark;
    ::epoll_ctl(epoll, operation, fd, &event);
}

itimerspec AbsoluteTime(std::int64_t us) {
    itimerspec time{};
    if (us == NeverUs) return time; // all zero: off
    const std::int64_t positive = std::max<std::int64_t>(us, 1);
    time.it_value.tv_sec = static_cast<time_t>(positive / 1'000'000);
    time.it_value.tv_nsec = static_cast<long>(positive % 1'000'000) * 1000;
    return time;
}

int CurrentLoopLevel() {
    return QThread::currentThread()->loopLevel();
}

bool ProcessEvents(QEventLoop::ProcessEventsFlags flags) {
    return QAbstractEventDispatcher::instance()->processEvents(flags);
}

} // namespace

/// One watch. It watches a duplicate of the descriptor, since one descriptor may be watched by
/// several.
class QtReactor::WatchSlot final : public FdWatch {
  public:
    WatchSlot(QtReactor& reactor, int fd, std::uint64_t number)
        : mReactor(reactor), mFd(NeededFd(::fcntl(fd, F_DUPFD_CLOEXEC, 3))), mNumber(number) {}
    ~WatchSlot() override {
        Want({});
        mReactor.mHandlers.erase(mNumber);
    }
    WatchSlot(const WatchSlot&) = delete;
    WatchSlot& operator=(const WatchSlot&) = delete;

    void Want(FdEvents events) override {
        // A descriptor that has hung up reports that whatever is asked for: it is taken out
        // instead.
        const std::uint32_t bits = EpollBits(events);
        const std::uint32_t former = std::exchange(mBits, bits);
        if (bits == former) return;
        const int operation = former == 0 ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
        Register(mReactor.mEpoll.Get(), bits == 0 ? EPOLL_CTL_DEL : operation, mFd.Get(), mNumber,
                 bits);
    }

  private:
    QtReactor& mReactor;
    Fd mFd;
    std::uint64_t mNumber;
    std::uint32_t mBits = 0;
};

/// Exists while a Yield is on the stack.
class QtReactor::YieldScope {
  public:
    explicit YieldScope(QtReactor& reactor)
        : mReactor(reactor),
          mOuterLevel(std::exchange(reactor.mYieldLoopLevel, CurrentLoopLevel())),
          mOuterEndUs(std::exchange(reactor.mYieldEndUs, NeverUs)) {
        ++mReactor.mDepth;
    }
    ~YieldScope() {
        mReactor.mYieldLoopLevel = mOuterLevel;
        mReactor.mYieldEndUs = mOuterEndUs;
        --mReactor.mDepth;
        mReactor.Arm(); // the limit wakes no Yield any more
    }
    YieldScope(const YieldScope&) = delete;
    YieldScope& operator=(const YieldScope&) = delete;

  private:
    QtReactor& mReactor;
    int mOuterLevel;
    std::int64_t mOuterEndUs;
};

/// Lets the application own a reactor.
class QtReactor::Owner final : public QObject {
  public:
    explicit Owner(QObject* application)
        : QObject(application),
          reactor([](const std::exception_ptr& error) { ShowError(nullptr, error); }) {}
    QtReactor reactor;
};

QtReactor::QtReactor(ErrorHandler onError)
    : SystemReactor([this] { Arm(); }),
      mOnError(std::move(onError)),
      mEpoll(NeededFd(::epoll_create1(EPOLL_CLOEXEC))),
      mTimer(NeededFd(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))),
      mNudge(NeededFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))),
      mNotifier(mEpoll.Get(), QSocketNotifier::Read) {
    Register(mEpoll.Get(), EPOLL_CTL_ADD, mTimer.Get(), OwnMark, EPOLLIN);
    Register(mEpoll.Get(), EPOLL_CTL_ADD, mNudge.Get(), OwnMark, EPOLLIN);
    QObject::connect(&mNotifier, &QSocketNotifier::activated, &mNotifier, [this] { OnWoken(); });
}

QtReactor::~QtReactor() = default;

QtReactor& QtReactor::OfApplication() {
    QCoreApplication* const application = QCoreApplication::instance();
    const QString name = QString::fromLatin1(ApplicationReactorName);
    auto* known = application->findChild<QObject*>(name, Qt::FindDirectChildrenOnly);
    if (known == nullptr) {
        known = new Owner(application);
        known->setObjectName(name);
    }
    return static_cast<Owner*>(known)->reactor;
}

void QtReactor::Yield(std::int32_t lLimit) {
    const YieldScope scope(*this);
    const std::int64_t endUs = NowUs() + std::int64_t{std::max(lLimit, 0)} * 1000;
    const bool served = Serve();
    const int outer = std::exchange(mServedDepth, mDepth);
    const bool dispatched = ProcessEvents(QEventLoop::AllEvents);
    mServedDepth = outer;
    ThrowWhatCame();
    if (served || dispatched || lLimit <= 0) return;
    mYieldEndUs = endUs;
    Arm();
    ProcessEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    ThrowWhatCame();
}

void QtReactor::ThrowWhatCame() {
    if (mCame) std::rethrow_exception(std::exchange(mCame, nullptr));
}

/// Qt's event loop found the kernel's timer or a watched descriptor ready.
void QtReactor::OnWoken() {
    if (mCame) return; // first things first: all of it stays ready
    const bool awaited = mDepth > 0 && mYieldLoopLevel == CurrentLoopLevel();
    if (awaited && mServedDepth == mDepth) return; // once in a pass is enough
    // Data that never stops is read several times per turn, because a turn of the toolkit's loop
    // costs more than a read. An operation that waits still sees every read.
    const std::int64_t until = awaited ? 0 : NowUs() + LongestBunchUs;
    try {
        while (Serve() && NowUs() < until) {
        }
    } catch (...) {
        if (awaited)
            mCame = std::current_exception();
        else if (mOnError)
            mOnError(std::current_exception());
        else
            qWarning("%s", ErrorText(std::current_exception()).toUtf8().constData());
    }
}

bool QtReactor::Serve() {
    struct Rearm { // also when a handler throws
        QtReactor& reactor;
        ~Rearm() { reactor.Arm(); }
    } const rearm{*this};
    const bool ran = mAlarms.RunDue(NowUs());
    return RunWatches() || ran;
}

bool QtReactor::RunWatches() {
    std::array<epoll_event, MostReadyAtOnce> ready{};
    const int count = ::epoll_wait(mEpoll.Get(), ready.data(), MostReadyAtOnce, 0);
    const std::uint64_t pass = ++mServed;
    bool any = false;
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = ready.at(static_cast<std::size_t>(i));
        const auto found = mHandlers.find(event.data.u64);
        if (found == mHandlers.end()) continue;  // one of its own, or a watch that ended
        const FdHandler handler = found->second; // the handler may end its watch
        any = true;
        (*handler)(EventsOfEpoll(event.events));
        if (mServed != pass) break; // a nested pass has served the others; who is ready stays so
    }
    return any;
}

/// Has the kernel wake the loop when the next is due. What is due already needs no timer, and a
/// loop that was nudged need not be again: a line that never stops costs no calls here.
void QtReactor::Arm() {
    const std::int64_t target = std::min(mAlarms.NextDue(), mYieldEndUs);
    const bool due = target <= NowUs();
    if (due != mNudged) Nudge(due);
    if (due || target == mArmedUs) return;
    mArmedUs = target;
    const itimerspec time = AbsoluteTime(target);
    ::timerfd_settime(mTimer.Get(), TFD_TIMER_ABSTIME, &time, nullptr);
}

void QtReactor::Nudge(bool on) {
    mNudged = on;
    std::uint64_t count = 1;
    const auto moved = on ? ::write(mNudge.Get(), &count, sizeof(count))
                          : ::read(mNudge.Get(), &count, sizeof(count));
    Q_ASSERT(moved == sizeof(count));
    Q_UNUSED(moved);
}

std::unique_ptr<FdWatch> QtReactor::Watch(int fd, FdEvents events,
                                          std::function<void(FdEvents)> handler) {
    const std::uint64_t number = ++mLastWatch;
    mHandlers[number] = std::make_shared<const std::function<void(FdEvents)>>(std::move(handler));
    auto watch = std::make_unique<WatchSlot>(*this, fd, number);
    watch->Want(events);
    return watch;
}

} // namespace qncomm

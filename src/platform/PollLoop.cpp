#include "platform/PollLoop.h"

#include "PollCalls.h"
#include "common/QNError.h"
#include "platform/Interrupt.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int64_t Never = AlarmQueue::Never;
constexpr std::size_t InterruptSlot = 0;

} // namespace

class PollLoop::WatchSlot final : public FdWatch {
  public:
    WatchSlot(PollLoop& loop, std::size_t slot) : mLoop(loop), mSlot(slot) {}
    ~WatchSlot() override {
        mLoop.mPoll[mSlot] = pollfd{-1, 0, 0};
        mLoop.mHandlers[mSlot].reset();
    }
    WatchSlot(const WatchSlot&) = delete;
    WatchSlot& operator=(const WatchSlot&) = delete;

    void Want(FdEvents events) override {
        pollfd& entry = mLoop.mPoll[mSlot];
        entry.events = PollBits(events);
        // poll reports a hang-up even when nothing was asked for; a negative descriptor is skipped.
        const bool idle = entry.events == 0;
        if (idle != (entry.fd < 0)) entry.fd = ~entry.fd;
        entry.revents = 0;
    }

  private:
    PollLoop& mLoop;
    std::size_t mSlot;
};

PollLoop::PollLoop(Interrupt* interrupt, std::int32_t lGraceMs)
    : mPoll{pollfd{interrupt != nullptr ? interrupt->Handle() : -1, POLLIN, 0}},
      mHandlers(1),
      mInterrupt(interrupt),
      mGraceUs(std::int64_t{lGraceMs} * 1000),
      mCancelAt(Never),
      mUnwoundAt(Never) {}

PollLoop::~PollLoop() = default;

void PollLoop::Yield(std::int32_t lLimit) {
    const std::int64_t now = NowUs();
    CheckInterrupt(now);
    const bool ran = mAlarms.RunDue(now);
    const std::int64_t limit = LaterBy(now, std::int64_t{std::max(lLimit, 0)} * 1000);
    const std::int64_t until = ran ? now : std::min({limit, mAlarms.NextDue(), mCancelAt});
    const int ready = Sleep(mPoll.data(), mPoll.size(), std::max<std::int64_t>(until - now, 0));
    if (ready > 0) RunWatches();
    if (ran || until <= now) return;
    if (mAlarms.NextDue() <= until || mPoll[InterruptSlot].revents != 0 || mCancelAt <= until) {
        const std::int64_t later = NowUs();
        CheckInterrupt(later);
        mAlarms.RunDue(later);
    }
}

FdEvents PollLoop::WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) {
    std::int64_t now = NowUs();
    const std::int64_t until = LaterBy(now, std::max<std::int64_t>(lLimitUs, 0));
    do {
        CheckInterrupt(now);
        // The signals' descriptor stays readable until they are collected.
        std::array entries{pollfd{fd, PollBits(events), 0}, mPoll[InterruptSlot]};
        const std::int64_t end = std::min({until, mCancelAt, mUnwoundAt});
        Sleep(entries.data(), entries.size(), std::max<std::int64_t>(end - now, 0));
        mPoll[InterruptSlot].revents = entries[1].revents;
        if (entries[0].revents != 0) return EventsOf(entries[0].revents);
        now = NowUs();
    } while (now < std::min(until, mUnwoundAt));
    return {};
}

void PollLoop::RunWatches() {
    // By index: a handler may add watches, and may yield, which then serves the rest of these.
    for (std::size_t slot = InterruptSlot + 1; slot < mPoll.size(); ++slot) {
        const short bits = std::exchange(mPoll[slot].revents, short{0});
        if (bits == 0) continue;
        const FdHandler handler = mHandlers[slot]; // the handler may end its watch
        if (handler) (*handler)(EventsOf(bits));
    }
}

void PollLoop::CheckInterrupt(std::int64_t now) {
    if (mInterrupt == nullptr) return;
    // Another caller may have collected the signal since the poll, so its event is only a hint;
    // without one the system call is spared.
    const bool waiting = std::exchange(mPoll[InterruptSlot].revents, short{0}) != 0;
    const std::int32_t count = waiting ? mInterrupt->Count() : mInterrupt->KnownCount();
    if (count == 0) mSignalsThrown = 0;
    if (count <= mSignalsThrown) {
        mCancelAt = Never;
        if (count == 0) mUnwoundAt = Never;
        return;
    }
    if (mCancelAt == Never) mCancelAt = now + mGraceUs;
    if (count - mSignalsThrown < 2 && now < mCancelAt) return;
    ++mSignalsThrown; // a second one ends what the first lets unwind, after as much grace
    mCancelAt = Never;
    mUnwoundAt = now + mGraceUs;
    throw OperationCancelled();
}

std::size_t PollLoop::FreeSlot() {
    for (std::size_t slot = InterruptSlot + 1; slot < mPoll.size(); ++slot)
        if (!mHandlers[slot]) return slot;
    mPoll.push_back(pollfd{-1, 0, 0});
    mHandlers.emplace_back();
    return mPoll.size() - 1;
}

std::unique_ptr<FdWatch> PollLoop::Watch(int fd, FdEvents events,
                                         std::function<void(FdEvents)> handler) {
    const std::size_t slot = FreeSlot();
    mHandlers[slot] = std::make_shared<const std::function<void(FdEvents)>>(std::move(handler));
    mPoll[slot].fd = fd;
    auto watch = std::make_unique<WatchSlot>(*this, slot);
    watch->Want(events);
    return watch;
}

} // namespace qncomm

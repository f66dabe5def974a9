#include "testing/line/FakeChannel.h"

#include <algorithm>

namespace qncomm::testing {

FakeChannel::FakeChannel(Reactor& reactor, FakeLine& line)
    : mReactor(reactor), mLine(line), mAlarm(reactor.CreateAlarm([this] {
          const FdEvents ready = Ready(mWanted);
          Changed();
          if (ready.Any() && mHandler) mHandler(ready);
      })) {}

IoResult FakeChannel::Open(const LineSettings& settings) {
    if (mLine.loss) return {IoStatus::Missing, 0, "the line is gone"};
    if (!mLine.openResult.Ok()) return mLine.openResult;
    ++mLine.opens;
    mLine.settings.push_back(settings);
    std::erase_if(mLine.arrivals,
                  [this](const auto& arrival) { return arrival.dueUs <= mReactor.NowUs(); });
    mWanted = {};
    mOpen = true;
    return {};
}

void FakeChannel::Close() {
    ++mLine.closes;
    mOpen = false;
    mLine.arrivals.clear();
    mAlarm->Clear();
}

IoResult FakeChannel::Configure(const LineSettings& settings) {
    if (mLine.configureResult.Ok()) mLine.settings.push_back(settings);
    return mLine.configureResult;
}

IoCount FakeChannel::Read(std::span<char> buffer) {
    auto& arrivals = mLine.arrivals;
    if (arrivals.empty() || arrivals.front().dueUs > mReactor.NowUs()) {
        if (mLine.loss) return {0, *mLine.loss};
        return {};
    }
    std::string& bytes = arrivals.front().bytes;
    const std::size_t count = bytes.copy(buffer.data(), buffer.size());
    bytes.erase(0, count);
    if (bytes.empty()) arrivals.pop_front();
    Changed();
    return {count, {}};
}

IoCount FakeChannel::Write(std::string_view bytes) {
    if (mLine.loss) return {0, *mLine.loss};
    const std::string_view taken = bytes.substr(0, mLine.takes);
    mLine.takes -= taken.size();
    mLine.written += taken;
    Changed();
    return {taken.size(), {}};
}

std::size_t FakeChannel::OutputPending() {
    if (mLine.pendingEnd && mReactor.NowUs() >= *mLine.pendingEnd) mLine.pending = 0;
    return mLine.pending;
}

void FakeChannel::DiscardInput() {
    ++mLine.inputDiscards;
    mLine.arrivals.clear();
}

void FakeChannel::DiscardOutput() {
    ++mLine.outputDiscards;
    mLine.pending = 0;
}

void FakeChannel::Want(FdEvents events) {
    mWanted = events;
    Changed();
}

FdEvents FakeChannel::Wait(FdEvents events, std::int64_t lLimitUs) {
    const std::int64_t until = mReactor.NowUs() + std::max<std::int64_t>(lLimitUs, 0);
    for (;;) {
        const std::int64_t now = mReactor.NowUs();
        if (const FdEvents ready = Ready(events); ready.Any() || now >= until) return ready;
        std::int64_t next = until;
        if (!mLine.arrivals.empty()) next = std::min(next, mLine.arrivals.front().dueUs);
        mReactor.WaitFor(-1, {}, next - now);
    }
}

void FakeChannel::Arrive(std::string_view bytes, std::int64_t lDelayUs) {
    if (!mOpen && lDelayUs == 0) return; // nobody listens
    mLine.arrivals.push_back({mReactor.NowUs() + lDelayUs, std::string(bytes)});
    Changed();
}

void FakeChannel::Changed() {
    if (!mOpen) return;
    if (Ready(mWanted).Any())
        mAlarm->SetDue(mReactor.NowUs());
    else if (mWanted.readable && !mLine.arrivals.empty())
        mAlarm->SetDue(mLine.arrivals.front().dueUs);
    else
        mAlarm->Clear();
}

FdEvents FakeChannel::Ready(FdEvents wanted) const {
    const bool arrived =
        !mLine.arrivals.empty() && mLine.arrivals.front().dueUs <= mReactor.NowUs();
    return {wanted.readable && arrived, wanted.writable && mLine.takes > 0 && !mLine.loss,
            mLine.loss.has_value() && (wanted.readable || wanted.writable)};
}

} // namespace qncomm::testing

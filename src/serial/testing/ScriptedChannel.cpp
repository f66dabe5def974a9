#include "serial_testing/ScriptedChannel.h"

#include <algorithm>

namespace qncomm::testing {

ScriptedChannel::ScriptedChannel(Reactor& reactor, ScriptedLine& line)
    : mReactor(reactor), mLine(line), mAlarm(reactor.CreateAlarm([this] {
          const FdEvents ready = Ready(mWanted);
          Changed();
          if (ready.Any() && mHandler) mHandler(ready);
      })) {}

IoResult ScriptedChannel::Open(const LineSettings& settings) {
    if (mLine.loss) return {IoStatus::Missing, 0, "the line is gone"};
    if (!mLine.openResult.Ok()) return mLine.openResult;
    ++mLine.opens;
    mLine.settings.push_back(settings);
    std::erase_if(mLine.arrivals,
                  [this](const auto& arrival) { return arrival.dueUs <= mReactor.NowUs(); });
    mWanted = {};
    mSaid.clear();
    mOpen = true;
    Follow();
    return {};
}

void ScriptedChannel::Close() {
    ++mLine.closes;
    mOpen = false;
    mLine.breaking = false;
    mLine.arrivals.clear();
    mAlarm->Clear();
}

IoResult ScriptedChannel::Configure(const LineSettings& settings) {
    if (mLine.configureResult.Ok()) mLine.settings.push_back(settings);
    return mLine.configureResult;
}

IoResult ScriptedChannel::SetBreak(bool bOn) {
    if (mLine.breakResult.Ok()) mLine.breaking = bOn;
    return mLine.breakResult;
}

IoCount ScriptedChannel::Read(std::span<char> buffer) {
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

IoCount ScriptedChannel::Write(std::string_view bytes) {
    if (mLine.loss) return {0, *mLine.loss};
    const std::string_view taken = bytes.substr(0, mLine.takes);
    mLine.takes -= taken.size();
    mLine.written += taken;
    mSaid += taken;
    Follow();
    Changed();
    return {taken.size(), {}};
}

std::size_t ScriptedChannel::OutputPending() {
    if (mLine.pendingEnd && mReactor.NowUs() >= *mLine.pendingEnd) mLine.pending = 0;
    return mLine.pending;
}

void ScriptedChannel::DiscardInput() {
    ++mLine.inputDiscards;
    mLine.arrivals.clear();
}

void ScriptedChannel::DiscardOutput() {
    ++mLine.outputDiscards;
    mLine.pending = 0;
}

void ScriptedChannel::Want(FdEvents events) {
    mWanted = events;
    Changed();
}

FdEvents ScriptedChannel::Wait(FdEvents events, std::int64_t lLimitUs) {
    const std::int64_t until = mReactor.NowUs() + std::max<std::int64_t>(lLimitUs, 0);
    for (;;) {
        const std::int64_t now = mReactor.NowUs();
        if (const FdEvents ready = Ready(events); ready.Any() || now >= until) return ready;
        std::int64_t next = until;
        if (!mLine.arrivals.empty()) next = std::min(next, mLine.arrivals.front().dueUs);
        mReactor.WaitFor(-1, {}, next - now);
    }
}

void ScriptedChannel::Follow() {
    const auto& script = mLine.script;
    if (script.empty()) return;
    while (mLine.step < script.size() && mSaid.starts_with(script[mLine.step].expect)) {
        const ScriptStep& played = script[mLine.step++];
        mSaid.erase(0, played.expect.size());
        Arrive(played.answer, played.delayUs);
    }
    const std::string_view awaited =
        mLine.step < script.size() ? script[mLine.step].expect : std::string_view();
    if (awaited.starts_with(mSaid)) return;
    mLine.loss = {IoStatus::Lost, 0,
                  "the host sent \"" + mSaid + "\", the script expects "
                      + (awaited.empty() ? "nothing more" : "\"" + std::string(awaited) + "\"")};
}

void ScriptedChannel::Arrive(std::string_view bytes, std::int64_t lDelayUs) {
    if (bytes.empty() || (!mOpen && lDelayUs == 0)) return; // nobody listens
    mLine.arrivals.push_back({mReactor.NowUs() + lDelayUs, std::string(bytes)});
    Changed();
}

void ScriptedChannel::Changed() {
    if (!mOpen) return;
    if (Ready(mWanted).Any())
        mAlarm->SetDue(mReactor.NowUs());
    else if (mWanted.readable && !mLine.arrivals.empty())
        mAlarm->SetDue(mLine.arrivals.front().dueUs);
    else
        mAlarm->Clear();
}

FdEvents ScriptedChannel::Ready(FdEvents wanted) const {
    const bool arrived =
        !mLine.arrivals.empty() && mLine.arrivals.front().dueUs <= mReactor.NowUs();
    return {wanted.readable && arrived, wanted.writable && mLine.takes > 0 && !mLine.loss,
            mLine.loss.has_value() && (wanted.readable || wanted.writable)};
}

ChannelFactory ScriptedChannels(ScriptedLine& line) {
    return [&line](const PortAddress&, Reactor& reactor) {
        return std::make_unique<ScriptedChannel>(reactor, line);
    };
}

} // namespace qncomm::testing

#include "TalkingLine.h"

#include <utility>

using qncomm::FdEvents;
using qncomm::IoCount;
using qncomm::IoResult;

TalkingLine::TalkingLine(qncomm::Reactor& reactor, std::string_view text)
    : mReactor(reactor), mLeft(text), mAlarm(reactor.CreateAlarm([this] {
          Schedule();
          if (mHandler) mHandler({.readable = true});
      })) {}

IoResult TalkingLine::Open(const qncomm::LineSettings& /*settings*/) {
    return {};
}

void TalkingLine::Close() {
    mWanted = false;
    mAlarm->Clear();
}

IoResult TalkingLine::Configure(const qncomm::LineSettings& /*settings*/) {
    return {};
}

IoCount TalkingLine::Read(std::span<char> buffer) {
    const std::size_t count = mLeft.copy(buffer.data(), buffer.size());
    mLeft.remove_prefix(count);
    return {count, {}};
}

void TalkingLine::Want(FdEvents events) {
    mWanted = events.readable;
    Schedule();
}

FdEvents TalkingLine::Wait(FdEvents events, std::int64_t lLimitUs) {
    if (events.readable && !mLeft.empty()) return {.readable = true};
    return mReactor.WaitFor(-1, {}, lLimitUs);
}

void TalkingLine::Schedule() {
    if (mWanted && !mLeft.empty()) mAlarm->SetDue(mReactor.NowUs());
}

qncomm::ChannelFactory TalkingLines(std::string_view text) {
    return [text](const qncomm::PortAddress&, qncomm::Reactor& reactor) {
        return std::make_unique<TalkingLine>(reactor, text);
    };
}

#include "Rfc2217Channel.h"

#include "SocketPlace.h"
#include "common/Wait.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t LongestWrite = 16UL * 1024;

constexpr std::string_view Rfc2217Scheme = "rfc2217://";

} // namespace

constinit const ChannelKind Rfc2217Kind{
    .scheme = Rfc2217Scheme,
    .form = "rfc2217://host:port",
    .check = [](std::string_view address) -> std::string {
        if (ParseSocketPlace(address, Rfc2217Scheme)) return {};
        return "a remote serial port is written rfc2217://host:port, with a port of 1 to 65535 and "
               "an IPv6 number in brackets";
    },
    .make = [](std::string_view address, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        auto [host, service] = ParseSocketPlace(address, Rfc2217Scheme).value();
        return std::make_unique<Rfc2217Channel>(reactor, std::move(host), std::move(service));
    },
    .look = [](std::string_view /*address*/) -> PortStatus {
        return {PortState::Unchecked, {}};
    },
};

Rfc2217Channel::Rfc2217Channel(Reactor& reactor, std::string sHost, std::string sService)
    : mReactor(reactor),
      mConnector(reactor, std::move(sHost), std::move(sService)),
      mWake(reactor.CreateAlarm([this] {
          if (mWanted.readable && mHandler) mHandler({.readable = true});
      })),
      mDue(reactor.CreateAlarm([this] { OnDue(); })) {}

Rfc2217Channel::~Rfc2217Channel() {
    Close();
}

// -- Opening and closing

/// Ends the connection unless the talk on it was brought to its end: a cancel too leaves none whose
/// answers would be taken for those of the next.
class Rfc2217Channel::WholeTalk {
  public:
    explicit WholeTalk(Rfc2217Channel& channel) : mChannel(channel) {}
    ~WholeTalk() {
        if (!mKept) mChannel.Drop();
    }
    WholeTalk(const WholeTalk&) = delete;
    WholeTalk& operator=(const WholeTalk&) = delete;

    void Keep() { mKept = true; }

  private:
    Rfc2217Channel& mChannel;
    bool mKept = false;
};

IoResult Rfc2217Channel::Open(const LineSettings& settings) {
    WholeTalk talk(*this);
    SleepUntil([&] { return Reach(settings); });
    mDue->Clear();
    EndTalk();
    if (mFailure) return *std::exchange(mFailure, std::nullopt);
    talk.Keep();
    mSession->received.clear();
    mSession->protocol.TakeLineErrors();
    mWanted = {};
    mWatch = mReactor.Watch(mSession->fd.Get(), {}, [this](FdEvents events) { OnWatch(events); });
    Rewatch();
    return {};
}

void Rfc2217Channel::Close() {
    if (!mWatch) return;
    mWatch.reset();
    mWake->Clear();
    mSession->received.clear();
    if (!mSession->Flush().Ok() || !mSession->protocol.Output().empty()
        || HasUnsent(mSession->fd.Get())) {
        Drop();
        return;
    }
    mDue->SetDue(mReactor.NowUs() + ParkUs);
}

IoResult Rfc2217Channel::Probe() {
    if (mWatch) return {};
    WholeTalk talk(*this);
    if (mTalk || (mSession && !mSession->Receive(Rfc2217Session::PieceSize, mReactor.NowUs()).Ok()))
        Drop();
    IoResult result = mFailure.value_or(IoResult{});
    mFailure.reset();
    if (!mSession && result.Ok()) {
        SleepUntil([this] { return Connect(); });
        if (!mFailure) result = Converse(Rfc2217Talk::Agreement, {});
        if (mFailure) result = *std::exchange(mFailure, std::nullopt);
    }
    mDue->Clear();
    if (!result.Ok()) return result;
    mDue->SetDue(mReactor.NowUs() + ParkUs);
    talk.Keep();
    return result;
}

void Rfc2217Channel::Drop() {
    EndTalk();
    mWatch.reset();
    if (mSession) CloseHard(mSession->fd.Get());
    mSession.reset();
}

bool Rfc2217Channel::Reach(const LineSettings& settings) {
    if (mWatch || mFailure) return true;
    if (!mSession) {
        if (!Connect()) return false;
        if (mFailure) return true;
        StartTalk(Rfc2217Talk::Opening, settings);
    } else if (!mTalk || (mTalk->GoOn() && !(mTalk->Settings() == settings))) {
        StartTalk(Rfc2217Talk::OpeningAgain, settings);
    }
    return GoOn() || (!mSession && Reach(settings));
}

/// Without waiting: whether there is a connection, or a failure.
bool Rfc2217Channel::Connect() {
    if (!mConnector.Reach()) return false;
    mSession = std::make_unique<Rfc2217Session>();
    const IoResult result = mConnector.Connect(mSession->fd);
    if (!result.Ok()) Fail(result);
    return true;
}

void Rfc2217Channel::StartTalk(Rfc2217Talk::Questions questions, const LineSettings& settings) {
    EndTalk();
    mTalk.emplace(mReactor, *mSession, questions, settings);
    mTalkWatch = mReactor.Watch(mSession->fd.Get(), {}, [this](FdEvents) { GoOn(); });
}

void Rfc2217Channel::EndTalk() {
    mTalkWatch.reset();
    mTalk.reset();
}

/// Whether there is nothing left to wait for.
bool Rfc2217Channel::GoOn() {
    const bool ended = mTalk->GoOn();
    const IoResult result = mTalk->Result();
    mDue->SetDue(ended ? mReactor.NowUs() + SocketConnector::TakeUs : mTalk->DueUs());
    mTalkWatch->Want(ended ? FdEvents{} : mTalk->Awaited());
    if (result.Ok()) return ended;
    const bool again = result.status == IoStatus::Lost && mTalk->IsOnKnownConnection();
    Drop();
    if (!again) Fail(result); // else it has ended while it was parked, and another one is made
    return !again;
}

void Rfc2217Channel::Fail(const IoResult& result) {
    Drop();
    mFailure = result;
    mDue->SetDue(mReactor.NowUs() + SocketConnector::TakeUs);
}

/// An answer is late, or nobody has taken what was reached or parked.
void Rfc2217Channel::OnDue() {
    if (mTalk && !mTalk->HasEnded()) {
        GoOn();
        return;
    }
    mFailure.reset();
    EndTalk();
    mSession.reset();
}

IoResult Rfc2217Channel::Configure(const LineSettings& settings) {
    IoResult result = Converse(Rfc2217Talk::Change, settings);
    if (mWatch) Want(mWanted);
    return result;
}

IoResult Rfc2217Channel::Converse(Rfc2217Talk::Questions questions, const LineSettings& settings) {
    Rfc2217Talk talk(mReactor, *mSession, questions, settings);
    SleepUntil([&talk] { return talk.GoOn(); }, &talk);
    return talk.Result();
}

IoResult Rfc2217Channel::SetBreak(bool bOn) {
    mSession->protocol.SetBreak(bOn);
    IoResult result = mSession->Flush();
    Rewatch();
    return result;
}

/// The connector's look-ups and the talk's questions end each in its own time.
template <class Done>
void Rfc2217Channel::SleepUntil(Done done, const Rfc2217Talk* talk) {
    const auto sleep = [&](std::int32_t ms) {
        const Rfc2217Talk* const now = talk == nullptr && mTalk ? &*mTalk : talk;
        const std::int64_t us = std::int64_t{ms} * 1000;
        if (now == nullptr)
            mConnector.Sleep(us);
        else
            mReactor.WaitFor(mSession->fd.Get(), now->Awaited(),
                             std::min(us, now->DueUs() - mReactor.NowUs()));
    };
    qncomm::Wait(mReactor, {.wholeMs = WaitBounds::Endless}).Until(done, sleep);
}

// -- The socket

IoCount Rfc2217Channel::Read(std::span<char> buffer) {
    std::string& received = mSession->received;
    IoResult result;
    if (received.empty()) {
        result = mSession->Receive(buffer.size(), mReactor.NowUs());
        if (result.Ok()) result = mSession->Flush(); // what is to be answered
    }
    const std::size_t count = received.copy(buffer.data(), buffer.size());
    received.erase(0, count);
    Want(mWanted);
    return {count, std::move(result)};
}

IoCount Rfc2217Channel::Write(std::string_view bytes) {
    if (!MayWrite()) {
        Rewatch();
        return {};
    }
    const std::string_view piece = bytes.substr(0, LongestWrite);
    mSession->protocol.Send(piece);
    IoResult result = mSession->Flush();
    Rewatch();
    return {piece.size(), std::move(result)};
}

bool Rfc2217Channel::MayWrite() const {
    return mSession->protocol.Output().empty() && !mSession->protocol.Suspended();
}

LineErrors Rfc2217Channel::TakeLineErrors() {
    return mSession->protocol.TakeLineErrors();
}

std::size_t Rfc2217Channel::OutputPending() {
    return mSession->protocol.Output().size();
}

void Rfc2217Channel::DiscardInput() {
    mSession->DiscardInput(mReactor.NowUs());
    Rewatch();
}

void Rfc2217Channel::DiscardOutput() {
    mSession->protocol.PurgeUnsent();
    static_cast<void>(mSession->Flush());
    Rewatch();
}

std::optional<bool> Rfc2217Channel::Dsr() {
    return mSession->protocol.Dsr();
}

// -- Waiting

void Rfc2217Channel::Want(FdEvents events) {
    mWanted = events;
    if (mWanted.readable && !mSession->received.empty())
        mWake->SetDue(mReactor.NowUs());
    else
        mWake->Clear();
    Rewatch();
}

void Rfc2217Channel::Rewatch() {
    if (!mWatch) return;
    const ComPortClient& protocol = mSession->protocol;
    mWatch->Want(
        {.readable = mWanted.readable,
         .writable = !protocol.Output().empty() || (mWanted.writable && !protocol.Suspended())});
}

void Rfc2217Channel::OnWatch(FdEvents events) {
    if (events.writable) static_cast<void>(mSession->Flush());
    const FdEvents report{.readable = events.readable && mWanted.readable,
                          .writable = events.writable && mWanted.writable && MayWrite(),
                          .hungUp = events.hungUp};
    if (report.Any() && mHandler) mHandler(report);
    Rewatch();
}

FdEvents Rfc2217Channel::Wait(FdEvents events, std::int64_t lLimitUs) {
    const bool waiting = !mSession->received.empty();
    if (events.readable && waiting) return {.readable = true};
    const bool unsent = !mSession->protocol.Output().empty();
    const FdEvents asked{.readable = events.readable,
                         .writable =
                             unsent || (events.writable && !mSession->protocol.Suspended())};
    FdEvents ready = mReactor.WaitFor(mSession->fd.Get(), asked, lLimitUs);
    if (ready.writable && unsent) static_cast<void>(mSession->Flush());
    ready.writable = ready.writable && events.writable && MayWrite();
    return ready;
}

} // namespace qncomm

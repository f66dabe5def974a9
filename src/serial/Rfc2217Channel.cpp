#include "Rfc2217Channel.h"

#include "SocketPlace.h"
#include "common/Wait.h"
#include "platform/SystemErrors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t PieceSize = 4096;
constexpr std::size_t LongestWrite = 16UL * 1024;
constexpr const char* ClosedText = "the other side closed the connection";

IoResult NoAnswer(const std::string& what) {
    return {IoStatus::TimedOut, ETIMEDOUT, what};
}

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
      mParkEnd(reactor.CreateAlarm([this] { mSession.reset(); })) {}

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
    mParkEnd->Clear();
    WholeTalk talk(*this);
    IoResult result;
    if (mSession) result = PutSettings(settings);
    if (result.status == IoStatus::Lost) Drop(); // it ended while it was parked
    if (!mSession) {
        result = Connect();
        if (result.Ok()) result = PutSettings(settings);
    }
    if (!result.Ok()) return result;
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
    if (!Flush().Ok() || !mSession->protocol.Output().empty() || HasUnsent(mSession->fd.Get())) {
        Drop();
        return;
    }
    mParkEnd->SetDue(mReactor.NowUs() + ParkUs);
}

IoResult Rfc2217Channel::Probe() {
    if (mWatch) return {};
    mParkEnd->Clear();
    WholeTalk talk(*this);
    if (mSession && !Receive(PieceSize).Ok()) Drop();
    IoResult result = mSession ? IoResult{} : Connect();
    if (!result.Ok()) return result;
    mParkEnd->SetDue(mReactor.NowUs() + ParkUs);
    talk.Keep();
    return result;
}

void Rfc2217Channel::Drop() {
    mWatch.reset();
    if (mSession) CloseHard(mSession->fd.Get());
    mSession.reset();
}

IoResult Rfc2217Channel::Connect() {
    mSession = std::make_unique<Session>();
    if (IoResult result = mConnector.Connect(mSession->fd); !result.Ok()) return result;
    ComPortClient& protocol = mSession->protocol;
    protocol.Offer();
    IoResult result = Await([&protocol] { return protocol.Agreed() || !protocol.Refusal().Ok(); },
                            LongestAnswerUs);
    if (result.status == IoStatus::TimedOut)
        return NoAnswer(mSession->heard
                            ? "who listens there does not speak RFC 2217: no answer to its options"
                            : "who listens there says nothing: it serves somebody else, or does "
                              "not speak RFC 2217");
    if (result.status == IoStatus::Lost)
        result.text += " before it answered: somebody else may hold the port";
    return result.Ok() ? protocol.Refusal() : result;
}

IoResult Rfc2217Channel::PutSettings(const LineSettings& settings) {
    ComPortClient& protocol = mSession->protocol;
    const bool first = !std::exchange(mSession->toldModemLines, true);
    // What a former opening left there goes now. Closing was too early for that: the last bytes of
    // a transfer may just have been on their way.
    protocol.PurgeUnsent();
    DiscardInput(); // goes first: when the others are answered and it is not, it never is
    if (first) protocol.AskForStates();
    protocol.HoldLines(true, true);
    if (IoResult result = Configure(settings); !result.Ok()) return result;
    if (protocol.Purging()) protocol.ForgetPurges(true);
    if (first && !protocol.Dsr()) {
        IoResult told =
            Await([&protocol] { return protocol.Dsr().has_value(); }, ModemStateLimitUs);
        if (told.status != IoStatus::TimedOut) return told;
    }
    return {};
}

IoResult Rfc2217Channel::Configure(const LineSettings& settings) {
    ComPortClient& protocol = mSession->protocol;
    protocol.Configure(settings);
    IoResult result = Await([&protocol] { return protocol.Settled(); }, LongestAnswerUs);
    if (result.status == IoStatus::TimedOut)
        result =
            NoAnswer("the remote port does not answer to the setting of " + protocol.Unanswered());
    if (mWatch) Want(mWanted);
    return result.Ok() ? protocol.Refusal() : result;
}

IoResult Rfc2217Channel::SetBreak(bool bOn) {
    mSession->protocol.SetBreak(bOn);
    IoResult result = Flush();
    Rewatch();
    return result;
}

template <typename Condition>
IoResult Rfc2217Channel::Await(Condition isMet, std::int64_t lLimitUs) {
    IoResult failure;
    const auto done = [&] {
        if (failure.Ok()) failure = Flush();
        return !failure.Ok() || isMet();
    };
    const auto sleep = [&](std::int32_t ms) {
        const bool unsent = !mSession->protocol.Output().empty();
        const FdEvents ready = mReactor.WaitFor(
            mSession->fd.Get(), {.readable = true, .writable = unsent}, std::int64_t{ms} * 1000);
        if (ready.readable || ready.hungUp) failure = Receive(PieceSize);
    };
    qncomm::Wait wait(mReactor, {.wholeMs = static_cast<std::int32_t>(lLimitUs / 1000)});
    const WaitEnd end = wait.Until(done, sleep);
    if (!failure.Ok() || end == WaitEnd::Met) return failure;
    return {IoStatus::TimedOut, ETIMEDOUT, {}};
}

// -- The socket

IoResult Rfc2217Channel::Receive(std::size_t most) {
    std::array<char, PieceSize> piece{};
    const ssize_t count =
        ::recv(mSession->fd.Get(), piece.data(), std::min(most, piece.size()), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return {};
    if (count <= 0) return LineFailure(count < 0 ? errno : 0, ClosedText);
    mSession->heard = true;
    ComPortClient& protocol = mSession->protocol;
    if (protocol.Purging() && mReactor.NowUs() > mSession->purgeUntil) protocol.ForgetPurges(false);
    protocol.Receive({piece.data(), static_cast<std::size_t>(count)}, mSession->received);
    return {};
}

IoResult Rfc2217Channel::Flush() {
    ComPortClient& protocol = mSession->protocol;
    while (!protocol.Output().empty()) {
        const std::string_view output = protocol.Output();
        const ssize_t count =
            ::send(mSession->fd.Get(), output.data(), output.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        if (count < 0) return LineFailure(errno, ClosedText);
        protocol.Sent(static_cast<std::size_t>(count));
    }
    return {};
}

IoCount Rfc2217Channel::Read(std::span<char> buffer) {
    std::string& received = mSession->received;
    IoResult result;
    if (received.empty()) {
        result = Receive(buffer.size());
        if (result.Ok()) result = Flush(); // what is to be answered
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
    IoResult result = Flush();
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
    mSession->received.clear();
    mSession->protocol.PurgeReceived();
    mSession->purgeUntil = mReactor.NowUs() + PurgeLimitUs;
    static_cast<void>(Flush()); // a loss shows on the next read
    Rewatch();
}

void Rfc2217Channel::DiscardOutput() {
    mSession->protocol.PurgeUnsent();
    static_cast<void>(Flush());
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
    if (events.writable) static_cast<void>(Flush());
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
    if (ready.writable && unsent) static_cast<void>(Flush());
    ready.writable = ready.writable && events.writable && MayWrite();
    return ready;
}

} // namespace qncomm

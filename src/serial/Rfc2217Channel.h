#pragma once

#include "Rfc2217Session.h"
#include "Rfc2217Talk.h"
#include "SocketConnector.h"
#include "serial/ByteChannel.h"
#include "serial/ChannelKind.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qncomm {

/// A serial port of another machine, with its settings, modem lines and break (RFC 2217).
///
/// Connecting, agreeing on the protocol and putting the settings on the remote line are part of
/// Open, or of Reach before it, each bounded in time and ended by the answer that was awaited; the
/// line is ready when Open returns. Configure too returns with the answers. A setting that the
/// server does not take makes them fail with what it said instead. What a server says meanwhile
/// makes no wait longer, and is kept only within ComPortClient's bounds; a cancel ends the
/// connection.
///
/// A connection that is closed stays up for a moment and the next Open takes it up again with all
/// that was agreed, as a raw socket's does.
class Rfc2217Channel final : public ByteChannel {
  public:
    static constexpr std::int64_t ParkUs = 1'000'000;

    Rfc2217Channel(Reactor& reactor, std::string sHost, std::string sService);
    ~Rfc2217Channel() override;
    Rfc2217Channel(const Rfc2217Channel&) = delete;
    Rfc2217Channel& operator=(const Rfc2217Channel&) = delete;

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    /// Connects and agrees on the protocol; leaves the line's settings alone.
    IoResult Probe() override;
    bool Reach(const LineSettings& settings) override;
    IoResult Configure(const LineSettings& settings) override;
    IoResult SetBreak(bool bOn) override;
    IoCount Read(std::span<char> buffer) override;
    IoCount Write(std::string_view bytes) override;
    LineErrors TakeLineErrors() override;
    std::size_t OutputPending() override;
    void DiscardInput() override;
    void DiscardOutput() override;
    std::optional<bool> Dsr() override;
    void Want(FdEvents events) override;
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override;

  private:
    class WholeTalk;

    bool Connect();
    void StartTalk(Rfc2217Talk::Questions questions, const LineSettings& settings);
    void EndTalk();
    bool GoOn();
    void Fail(const IoResult& result);
    void OnDue();
    IoResult Converse(Rfc2217Talk::Questions questions, const LineSettings& settings);
    template <class Done>
    void SleepUntil(Done done, const Rfc2217Talk* talk = nullptr);
    /// Ends the connection at once.
    void Drop();
    void OnWatch(FdEvents events);
    void Rewatch();
    bool MayWrite() const;

    Reactor& mReactor;
    SocketConnector mConnector;
    /// Of the open port, of the parked connection, or of one that is being reached.
    std::unique_ptr<Rfc2217Session> mSession;
    std::optional<Rfc2217Talk> mTalk;    ///< that leads to the opening; ended ones until then
    std::unique_ptr<FdWatch> mTalkWatch; ///< goes on with it
    std::optional<IoResult> mFailure;    ///< how a Reach has ended
    std::unique_ptr<FdWatch> mWatch;     ///< while the port is open
    std::unique_ptr<Alarm> mWake;        ///< received bytes wait for the handler
    std::unique_ptr<Alarm> mDue; ///< ends the waiting for an answer, and what is reached or parked
    Handler mHandler;
    FdEvents mWanted;
};

/// A remote serial port: "rfc2217://host:port".
extern const ChannelKind Rfc2217Kind;

} // namespace qncomm

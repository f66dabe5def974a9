#pragma once

#include "ComPortClient.h"
#include "SocketConnector.h"
#include "platform/Fd.h"
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
/// Open, each bounded in time and ended by the answer that was awaited; the line is ready when Open
/// returns. Configure too returns with the answers. A setting that the server does not take makes
/// them fail with what it said instead. What a server says meanwhile makes no wait longer, and is
/// kept only within ComPortClient's bounds; a cancel ends the connection.
///
/// A connection that is closed stays up for a moment and the next Open takes it up again with all
/// that was agreed, as a raw socket's does.
class Rfc2217Channel final : public ByteChannel {
  public:
    static constexpr std::int64_t LongestAnswerUs = 3'000'000;
    /// How long a server that has answered all else may take to tell its modem lines, and to say
    /// that it has dropped data.
    static constexpr std::int64_t ModemStateLimitUs = 200'000;
    static constexpr std::int64_t PurgeLimitUs = 1'000'000;
    static constexpr std::int64_t ParkUs = 1'000'000;

    Rfc2217Channel(Reactor& reactor, std::string sHost, std::string sService);
    ~Rfc2217Channel() override;
    Rfc2217Channel(const Rfc2217Channel&) = delete;
    Rfc2217Channel& operator=(const Rfc2217Channel&) = delete;

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    /// Connects and agrees on the protocol; leaves the line's settings alone.
    IoResult Probe() override;
    bool Reach() override { return mSession || mConnector.Reach(); }
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

    /// A connection and what was said on it.
    struct Session {
        Fd fd;
        ComPortClient protocol;
        std::string received;        ///< bytes of the line that nobody has read yet
        std::int64_t purgeUntil = 0; ///< when to stop waiting for a purge's answer
        bool heard = false;          ///< it has said anything at all
        bool toldModemLines = false; ///< the server had its time to tell them
    };

    IoResult Connect();
    IoResult PutSettings(const LineSettings& settings);
    template <typename Condition>
    IoResult Await(Condition isMet, std::int64_t lLimitUs);
    IoResult Receive(std::size_t most);
    IoResult Flush();
    /// Ends the connection at once.
    void Drop();
    void OnWatch(FdEvents events);
    void Rewatch();
    bool MayWrite() const;

    Reactor& mReactor;
    SocketConnector mConnector;
    std::unique_ptr<Session> mSession; ///< of the open port, or of the parked connection
    std::unique_ptr<FdWatch> mWatch;   ///< while the port is open
    std::unique_ptr<Alarm> mWake;      ///< received bytes wait for the handler
    std::unique_ptr<Alarm> mParkEnd;
    Handler mHandler;
    FdEvents mWanted;
};

/// A remote serial port: "rfc2217://host:port".
extern const ChannelKind Rfc2217Kind;

} // namespace qncomm

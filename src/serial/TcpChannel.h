#pragma once

#include "FdChannel.h"
#include "SocketConnector.h"
#include "serial/ChannelKind.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qncomm {

/// A raw byte socket, such as a device server offers. It carries no line settings and no modem
/// lines. The socket itself loses nothing, but the line behind the server may, and it is slower: so
/// it does not count as reliable, and what travels over it is acknowledged.
///
/// Connecting is part of Open and bounded in time. A connection that is closed stays up for a
/// moment, unused, and the next Open within it takes it up again: a search opens the port for each
/// combination, and many device servers take one connection only and are slow to let go of it.
class TcpChannel final : public FdChannel {
  public:
    static constexpr std::int64_t ParkUs = 1'000'000;

    TcpChannel(Reactor& reactor, std::string sHost, std::string sService);
    ~TcpChannel() override;
    TcpChannel(const TcpChannel&) = delete;
    TcpChannel& operator=(const TcpChannel&) = delete;

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    IoResult Probe() override;
    bool Reach(const LineSettings& /*settings*/) override {
        return Handle() >= 0 || mParked || mConnector.Reach();
    }
    IoResult Configure(const LineSettings& settings) override;
    std::size_t OutputPending() override { return 0; }
    void DiscardInput() override;
    void DiscardOutput() override {} // what the system took is on its way
    std::optional<bool> Dsr() override { return std::nullopt; }

  protected:
    ssize_t Put(std::string_view bytes) override;

  private:
    SocketConnector mConnector;
    Fd mParked;
    std::unique_ptr<Alarm> mParkEnd;
};

/// A raw byte socket: "tcp://host:port".
extern const ChannelKind TcpKind;

} // namespace qncomm

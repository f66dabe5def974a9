#pragma once

#include "serial/PortAddress.h"
#include "serial_testing/ScriptedLine.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace qncomm::testing {

/// A channel to a far side that a test plays: by a script, or by hand with Arrive, with every
/// failure at a switch. Works on any reactor; on one with a driven clock no time passes.
class ScriptedChannel : public ByteChannel {
  public:
    /// Reactor and line outlive the channel. Several channels may share a line, one open at a time.
    ScriptedChannel(Reactor& reactor, ScriptedLine& line);

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    IoResult Probe() override { return mLine.probeResult; }
    IoResult Configure(const LineSettings& settings) override;
    IoResult SetBreak(bool bOn) override;
    IoCount Read(std::span<char> buffer) override;
    IoCount Write(std::string_view bytes) override;
    LineErrors TakeLineErrors() override { return std::exchange(mLine.errors, {}); }
    std::size_t OutputPending() override;
    void DiscardInput() override;
    void DiscardOutput() override;
    std::optional<bool> Dsr() override { return mLine.dsr; }
    void Want(FdEvents events) override;
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override;

    /// The far side sends after lDelayUs microseconds; to be called in order of time. What is sent
    /// at once to a closed channel is lost, as on a line.
    void Arrive(std::string_view bytes, std::int64_t lDelayUs = 0);
    /// To be called after a switch of the open line was changed, so that the handler hears of it.
    void Changed();

  private:
    FdEvents Ready(FdEvents wanted) const;
    /// Goes on in the script with what the host has said.
    void Follow();

    Reactor& mReactor;
    ScriptedLine& mLine;
    std::unique_ptr<Alarm> mAlarm;
    Handler mHandler;
    FdEvents mWanted;
    std::string mSaid; ///< by the host, since the last step
    bool mOpen = false;
};

/// Makes such a channel for every address; the line outlives what uses the factory.
ChannelFactory ScriptedChannels(ScriptedLine& line);

} // namespace qncomm::testing

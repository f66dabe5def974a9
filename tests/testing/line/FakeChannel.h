#pragma once

#include "serial/ByteChannel.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// The far side of a FakeChannel: what it will do and what it has seen. Outlives the channel.
struct FakeLine {
    /// Switches
    IoResult openResult;
    IoResult probeResult;
    IoResult configureResult;
    std::optional<IoResult> loss;           ///< the line is gone from now on
    LineErrors errors;                      ///< that the next look finds
    std::optional<bool> dsr;                ///< no modem lines unless set
    std::size_t takes = 1'000'000;          ///< bytes that writes still take
    std::size_t pending = 0;                ///< bytes on their way to the line
    std::optional<std::int64_t> pendingEnd; ///< when they will have left

    /// What it has seen
    std::string written;
    std::vector<LineSettings> settings; ///< of each opening and change
    int opens = 0;
    int closes = 0;
    int inputDiscards = 0;
    int outputDiscards = 0;

    struct Arrival {
        std::int64_t dueUs;
        std::string bytes;
    };
    std::deque<Arrival> arrivals; ///< in order of time
};

/// A line of which every failure can be switched on. Works on any reactor.
class FakeChannel final : public ByteChannel {
  public:
    FakeChannel(Reactor& reactor, FakeLine& line);

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    IoResult Probe() override { return mLine.probeResult; }
    IoResult Configure(const LineSettings& settings) override;
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

    /// The far side sends after lDelayUs; call it in order of time.
    void Arrive(std::string_view bytes, std::int64_t lDelayUs = 0);
    /// Looks at the switches again.
    void Changed();

  private:
    FdEvents Ready(FdEvents wanted) const;

    Reactor& mReactor;
    FakeLine& mLine;
    std::unique_ptr<Alarm> mAlarm;
    Handler mHandler;
    FdEvents mWanted;
    bool mOpen = false;
};

} // namespace qncomm::testing

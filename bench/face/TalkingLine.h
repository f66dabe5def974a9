#pragma once

#include "serial/ByteChannel.h"
#include "serial/PortAddress.h"

#include <memory>
#include <string>
#include <string_view>

/// A line whose printer never stops talking: whenever the reader has room there is more, until the
/// text has been read. It takes what is written and drops it.
class TalkingLine final : public qncomm::ByteChannel {
  public:
    /// The text stays the caller's and outlives the line.
    TalkingLine(qncomm::Reactor& reactor, std::string_view text);

    qncomm::IoResult Open(const qncomm::LineSettings& settings) override;
    void Close() override;
    qncomm::IoResult Probe() override { return {}; }
    qncomm::IoResult Configure(const qncomm::LineSettings& settings) override;
    qncomm::IoCount Read(std::span<char> buffer) override;
    qncomm::IoCount Write(std::string_view bytes) override { return {bytes.size(), {}}; }
    std::size_t OutputPending() override { return 0; }
    void DiscardInput() override {}
    void DiscardOutput() override {}
    std::optional<bool> Dsr() override { return {}; }
    void Want(qncomm::FdEvents events) override;
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }
    qncomm::FdEvents Wait(qncomm::FdEvents events, std::int64_t lLimitUs) override;

  private:
    void Schedule();

    qncomm::Reactor& mReactor;
    std::string_view mLeft;
    Handler mHandler;
    bool mWanted = false;
    std::unique_ptr<qncomm::Alarm> mAlarm;
};

/// Makes such a line for every address.
qncomm::ChannelFactory TalkingLines(std::string_view text);

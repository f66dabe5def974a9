#pragma once

#include "OpeningLook.h"
#include "serial/TransferPreferences.h"
#include "transfer/TransferEngine.h"
#include "transfer/TransferFiles.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// What a transfer is started with.
struct TransferOrder {
    bool sends = false;
    bool byZModem = false;
    std::string path;
    std::string name; ///< what a sent file is called on the other side, unless it is renamed
    bool sevenBits = false;
    bool reliable = false; ///< the line damages nothing; the transfer may build on that
    TransferPreferences preferences;
    TransferLook look; ///< at what comes before the other side's first packet
};

/// One file on its way: an engine with its host file. It has no port: bytes go in and out through
/// its owner, and what it reports are the state codes that the link knows.
class TransferInProgress {
  public:
    /// report is called with each new TransferStateCode and whenever bytes have moved.
    using Report = std::function<void(std::int16_t)>;

    TransferInProgress(TransferOrder order, Report report);
    ~TransferInProgress();
    TransferInProgress(const TransferInProgress&) = delete;
    TransferInProgress& operator=(const TransferInProgress&) = delete;

    /// Times are microseconds of one clock.
    void Start(std::int64_t nowUs);
    void Receive(std::string_view bytes, std::int64_t nowUs);
    std::optional<std::int64_t> NextDue() const;
    void Tick(std::int64_t nowUs);
    /// What is to go out next, and how much of it the line took.
    std::string_view Output(std::int64_t nowUs);
    void Sent(std::size_t count, std::int64_t nowUs);
    void Abort(std::int64_t nowUs);
    /// The line is gone: fails without another byte.
    void Break(const std::string& reason);

    /// Whether its end is still open.
    bool IsRunning() const;
    /// True when nothing more will be asked of the line; Finish then reports how it ended.
    bool IsOver() const;
    /// Reports the end; returns the bytes that came behind it.
    std::string Finish();

    std::int16_t State() const { return mState; }
    std::uint64_t Bytes() const;
    std::uint64_t Size() const;
    const std::string& Name() const { return mOrder.name; }
    void SetName(std::string_view name) { mOrder.name = name; }
    /// Why it failed; empty after success.
    const std::string& Reason() const { return mReason; }

  private:
    void BeginProtocol(std::int64_t nowUs);
    bool IsRefused(std::string_view bytes, std::int64_t nowUs);
    void Serve(std::int64_t nowUs);
    void Enter(std::int16_t state);
    void ReportProgress();
    std::string WhyNot() const;

    TransferOrder mOrder;
    Report mReport;
    std::unique_ptr<transfer::FileSource> mSource;
    std::unique_ptr<transfer::FileSink> mSink;
    std::unique_ptr<transfer::TransferEngine> mEngine;
    std::int16_t mState;
    std::uint64_t mReportedBytes = 0;
    std::optional<std::uint64_t> mSize;
    std::string mReason;
    OpeningLook mLook;
    bool mRefused = false; ///< what was heard is a refusal and no packet
    bool mBroken = false;
};

} // namespace qncomm

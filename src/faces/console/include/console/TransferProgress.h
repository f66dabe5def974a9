#pragma once

#include "common/MessageLoop.h"
#include "console/StatusLine.h"
#include "console/TransferMeter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace qncomm {

/// What a user and a program see of a running transfer: the status line with a bar, rate and time
/// left, and a reading now and then. It looks at the transfer when a message comes and once a
/// second, so that the rate of a stalled line falls without a message.
class TransferProgress {
  public:
    /// What has moved by now; a size of 0 is not known yet.
    struct Moved {
        std::int64_t bytes = 0; ///< so far
        std::int64_t size = 0;  ///< of the whole file
    };
    /// Asked for the current state.
    using Look = std::function<Moved()>;
    /// Takes a reading at each whole percent, ten a second at most, and once a second in between.
    using Report = std::function<void(const TransferReading&)>;

    /// loop and status must outlive the object; an empty report takes nothing.
    TransferProgress(MessageLoop& loop, StatusLine& status, Look look, Report report);

    /// A message of the operation with its own percentage, which is shown when the size is not
    /// known.
    void Show(const std::string& sMessage, std::int32_t lPercent);

    /// The reading at the end: the mean rate of the whole transfer.
    TransferReading Whole() const;
    /// Milliseconds since the object was made.
    std::int64_t ElapsedMs() const { return mLoop.NowMs() - mStart; }

  private:
    void Update();
    void ReportReading(const TransferReading& reading);

    MessageLoop& mLoop;
    StatusLine& mStatus;
    Look mLook;
    Report mReport;
    TransferMeter mMeter;
    std::int64_t mStart;
    std::string mMessage;
    std::int32_t mPercent = 0;
    std::optional<std::int32_t> mReported; ///< the percentage that was reported last
    std::optional<std::int64_t> mReportedAt;
    std::unique_ptr<RunningTimer> mTimer;
};

} // namespace qncomm

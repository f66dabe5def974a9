#pragma once

#include "LinkState.h"
#include "PrinterError.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// One file on its way through the serial control's transfer facility: starts it, follows its
/// states, reports progress and honours a cancel.
class FileTransfer {
  public:
    /// verb and name make up the status message; target is what the control is told to call the
    /// file; size is what percentages count against, 0 to take what the control tells.
    struct Job {
        std::string_view verb;
        std::string name;
        std::string target;
        std::int32_t size = 0;
        bool nameComesFromControl = false;
    };

    FileTransfer(LinkState& state, Job job);
    ~FileTransfer();
    FileTransfer(const FileTransfer&) = delete;
    FileTransfer& operator=(const FileTransfer&) = delete;

    /// Starts the transfer and waits for its end; False when it failed. What comes before the other
    /// side's first packet may be the printer's refusal, which ends it at once; the first packet
    /// waits for one for holdMs.
    bool Run(const std::function<void()>& start, std::int32_t holdMs = 0);
    /// Whether the printer has said that it will not begin.
    bool IsRefused() const { return mRefusal->said; }
    /// Raises the error by which the printer has refused the transfer, if it has named one.
    void RaiseRefusal() const;

    /// Raises StatusEvent with the job's message; a handler that cancels aborts the transfer.
    void Report(std::int16_t percent);
    /// Aborts what may still run.
    void Abort();

  private:
    enum class Step { GoOn, Over, Failed };
    /// What a printer has said in the place of a first packet.
    struct Refusal {
        bool said = false;
        PrinterError error;
    };

    static bool IsRefusal(std::string_view heard, Refusal& refusal);

    Step Follow(std::int16_t state);
    void Announced();
    std::string OwnMessage() const;
    void LearnSize();
    void ReportProgress();
    SerialControl& Serial() const { return mState.Serial(); }

    LinkState& mState;
    Job mJob;
    std::string mMessage; ///< a handler of StatusEvent may change it for the rest of the transfer
    std::int32_t mStepPercent = 1;
    std::int16_t mReported = -1;
    bool mSeen = false; ///< there was activity
    /// Shared with the serial control, which may look longer than this lives.
    std::shared_ptr<Refusal> mRefusal = std::make_shared<Refusal>();
};

} // namespace qncomm

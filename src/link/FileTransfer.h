#pragma once

#include "LinkState.h"

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

    /// Starts the transfer and waits for its end; False when it failed.
    bool Run(const std::function<void()>& start);

    /// Raises StatusEvent with the job's message; a handler that cancels aborts the transfer.
    void Report(std::int16_t percent);
    /// Aborts what may still run.
    void Abort();

  private:
    enum class Step { GoOn, Over, Failed };

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
};

} // namespace qncomm

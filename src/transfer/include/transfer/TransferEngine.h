#pragma once

#include "transfer/TransferTypes.h"

namespace qncomm::transfer {

/// One end of one transfer, driven by its caller. It has no clock, no file and no port: bytes and
/// moments go in; bytes, requests about files and progress come out. Nothing blocks and nothing
/// throws but std::bad_alloc.
///
/// The caller's loop: Receive what arrived; Tick when NextDeadline has come; while a request
/// stands, carry it out and Answer it; write what Output offers and report with Sent how much of it
/// the line took. Output asks for more bytes only when the last ones were taken, so what is in
/// flight is bounded by what the caller's line takes. After any call a new request or new output
/// may stand. `ServeRequests` in TransferFiles.h does the part about files.
class TransferEngine {
  public:
    TransferEngine() = default;
    TransferEngine(const TransferEngine&) = delete;
    TransferEngine& operator=(const TransferEngine&) = delete;
    virtual ~TransferEngine() = default;

    /// Begins; called once, before everything else.
    void Start(Time now);

    /// Bytes from the line, cut anywhere.
    void Receive(std::string_view sBytes, Time now);

    /// When Tick is to be called at the latest, unless something else is called before; empty when
    /// nothing is awaited.
    [[nodiscard]] std::optional<Time> NextDeadline() const;
    void Tick(Time now);

    /// The request that stands, or null. It stays the same object until it is answered.
    [[nodiscard]] const Request* PendingRequest() const;
    void Answer(const transfer::Answer& answer, Time now);

    /// The next bytes for the line; empty when there are none until something else happens. Valid
    /// until the next call.
    [[nodiscard]] std::string_view Output(Time now);
    /// The line took the first `count` bytes of Output.
    void Sent(std::size_t count, Time now);

    /// Stops the transfer and tells the other side. A file that was open is closed as not whole.
    void Cancel(Time now);

    [[nodiscard]] transfer::Phase Phase() const { return mPhase; }
    [[nodiscard]] transfer::Outcome Outcome() const { return mOutcome; }
    /// Why it failed or was cancelled, for a person; empty after success.
    [[nodiscard]] const std::string& Reason() const { return mReason; }
    [[nodiscard]] const transfer::Progress& Progress() const { return mProgress; }
    /// The file that is travelling or was the last to travel.
    [[nodiscard]] const FileInfo& CurrentFile() const { return mFile; }
    /// True when the outcome stands, no request is left and all output was taken. The line may then
    /// be closed or used for something else; bytes must not be flushed, only drained. A line that
    /// has taken nothing for ten seconds gets no last word.
    [[nodiscard]] bool IsOver() const;
    /// Bytes that came behind the transfer's last ones and belong to whoever uses the line next.
    [[nodiscard]] std::string TakeUnread();

  protected:
    /// What each engine adds. OnInput takes one item from Input and says whether there may be more.
    virtual void OnStart(Time now) = 0;
    virtual bool OnInput(Time now) = 0;
    virtual void OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) = 0;
    virtual void OnTimer(Time now) = 0;
    virtual void OnSilence(Time now) = 0; ///< nothing valid came for the whole patience
    virtual void
    OnProduce(Time now) = 0;     ///< the output is empty: put more, or ask for what it takes
    virtual void OnCancel() = 0; ///< put what tells the other side

    [[nodiscard]] std::string_view& Input() { return mInputView; }
    void Put(std::string_view bytes) { mOutput.append(bytes); }
    [[nodiscard]] std::string& OutputBuffer() { return mOutput; }
    [[nodiscard]] bool HasOutput() const { return mOutputTaken < mOutput.size(); }
    [[nodiscard]] std::size_t OutputSize() const { return mOutput.size() - mOutputTaken; }
    void DropOutput();

    void Ask(Request request) { mRequest = std::move(request); }
    void AskClose(bool bWhole);

    /// The timer: fires when `span` has passed without a byte sent since it was armed.
    void Arm(Time span, Time now);
    /// The same counted from now, whatever is sent in between.
    void ArmFixed(Time span, Time now);
    void Disarm() { mTimer.reset(); }
    /// Something valid came from the other side.
    void Heard(Time now) { mLastHeard = now; }
    [[nodiscard]] Time LastHeard() const { return mLastHeard; }
    void SetPatience(Time span) { mPatience = span; }

    void Enter(transfer::Phase phase) { mPhase = phase; }
    void OpenFile(const FileInfo& file, std::uint64_t offset);
    /// Ends the transfer; an open file is closed as not whole. The first outcome stands.
    void End(transfer::Outcome outcome, std::string reason);

    transfer::Progress mProgress;
    FileInfo mFile;
    bool mFileOpen = false;

  private:
    void Advance(Time now);

    std::string mInput;
    std::string_view mInputView;
    std::string mOutput;
    std::size_t mOutputTaken = 0;
    std::optional<Request> mRequest;
    std::optional<Time> mTimer;
    Time mTimerSpan{0};
    std::optional<Time> mLastWordsBy; ///< the line has to take something of them until then
    Time mLastHeard{0};
    Time mPatience{std::chrono::seconds(50)};
    transfer::Phase mPhase = Phase::Idle;
    transfer::Outcome mOutcome = Outcome::Running;
    std::string mReason;
};

} // namespace qncomm::transfer

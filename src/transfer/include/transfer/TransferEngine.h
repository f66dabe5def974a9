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
    /// Time has passed. Harmless when called early or more often than needed.
    void Tick(Time now);

    /// The request that stands, or null. It stays the same object until it is answered.
    [[nodiscard]] const Request* PendingRequest() const;
    /// What became of the request that stands; without one it does nothing.
    void Answer(const transfer::Answer& answer, Time now);

    /// The next bytes for the line; empty when there are none until something else happens. Valid
    /// until the next call.
    [[nodiscard]] std::string_view Output(Time now);
    /// The line took the first `count` bytes of Output.
    void Sent(std::size_t count, Time now);

    /// Stops the transfer and tells the other side. A file that was open is closed as not whole.
    void Cancel(Time now);

    /// Where the transfer stands.
    [[nodiscard]] transfer::Phase Phase() const { return mPhase; }
    /// How it ended; Running until it has. The first outcome stands.
    [[nodiscard]] transfer::Outcome Outcome() const { return mOutcome; }
    /// Why it failed or was cancelled, for a person; empty after success.
    [[nodiscard]] const std::string& Reason() const { return mReason; }
    /// How far it is; the same object for the engine's whole life.
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
    // -- What each engine adds; all but OnGiveUp may end the transfer

    /// Start was called.
    virtual void OnStart(Time now) = 0;
    /// Takes one item from Input, or the beginning of one; false when nothing is left to look at.
    virtual bool OnInput(Time now) = 0;
    /// The caller answered the request of that kind, which no longer stands. A request that failed
    /// has failed the transfer; only that of a Close is told here.
    virtual void OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) = 0;
    /// The timer has fired and is not armed any more.
    virtual void OnTimer(Time now) = 0;
    /// Nothing valid came for the whole patience.
    virtual void OnSilence(Time now) = 0;
    /// The output is empty: puts more, or asks for what it takes.
    virtual void OnProduce(Time now) = 0;
    /// Puts what tells the other side that the transfer is over, and why where the protocol has
    /// words for it; an empty reason is a cancel by this side. The output is empty.
    virtual void OnGiveUp(const std::string& sReason) = 0;

    // -- What each engine uses

    /// What came from the line and was not taken yet; OnInput removes from its front.
    [[nodiscard]] std::string_view& Input() { return mInputView; }
    /// Appends bytes to the output.
    void Put(std::string_view bytes) { mOutput.append(bytes); }
    /// The output itself, to append to. Its front may have been taken by the line already.
    [[nodiscard]] std::string& OutputBuffer() { return mOutput; }
    /// Whether the line has not taken all of the output.
    [[nodiscard]] bool HasOutput() const { return mOutputTaken < mOutput.size(); }
    /// Bytes of the output that the line has not taken.
    [[nodiscard]] std::size_t OutputSize() const { return mOutput.size() - mOutputTaken; }
    /// Takes back what the line has not taken.
    void DropOutput();

    /// Puts a request to the caller in the place of the one that stands.
    void Ask(Request request) { mRequest = std::move(request); }
    /// Asks the caller to close the open file.
    void AskClose(bool bWhole);

    /// The timer: fires when `span` has passed without a byte sent since it was armed.
    void Arm(Time span, Time now);
    /// The same counted from now, whatever is sent in between.
    void ArmFixed(Time span, Time now);
    /// The timer does not fire.
    void Disarm() { mTimer.reset(); }
    /// Something valid came from the other side.
    void Heard(Time now) { mLastHeard = now; }
    /// When Heard was called last.
    [[nodiscard]] Time LastHeard() const { return mLastHeard; }
    /// How long nothing valid may come before OnSilence; 50 s unless set.
    void SetPatience(Time span) { mPatience = span; }

    /// The transfer stands there now.
    void Enter(transfer::Phase phase) { mPhase = phase; }
    /// This file travels from now on, from `offset` bytes; its progress begins there.
    void OpenFile(const FileInfo& file, std::uint64_t offset);
    /// Ends the transfer as failed and tells the other side. The output that waits is dropped.
    void Fail(const std::string& sReason);
    /// Ends the transfer; an open file is closed as not whole. The first outcome stands.
    void End(transfer::Outcome outcome, std::string reason);

    transfer::Progress mProgress; ///< what Progress returns; engines count here
    FileInfo mFile;               ///< what CurrentFile returns
    bool mFileOpen = false;       ///< the caller has a file open and waits for its Close

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

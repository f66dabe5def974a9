#pragma once

#include "link/SerialControl.h"
#include "testing/core/ManualLoop.h"

#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace qncomm::testing {

/// A serial control that plays a script on a manual clock. What is sent must be what the script
/// expects next, byte for byte; a byte too many, a byte that differs or a script that is left over
/// fails the test.
class ScriptedSerial : public SerialControl, private ManualLoop::Source {
  public:
    explicit ScriptedSerial(ManualLoop& loop);
    ~ScriptedSerial() override;

    // -- The script

    /// The next bytes to be sent, then what arrives from there on: each Reply lDelay ms after the
    /// one before it.
    ScriptedSerial& Expect(std::string sBytes);
    ScriptedSerial& Reply(std::string sBytes, std::int32_t lDelay = 0);
    /// Expect a command line with CR LF and answer with its echo, the given lines and "Ok".
    ScriptedSerial& Exchange(const std::string& sLine, const std::vector<std::string>& lines = {});
    /// The handshake of a claim and its answer.
    ScriptedSerial& Handshake();
    /// Instead of a script: called with all that was sent so far and not taken; takes what it
    /// understands by erasing it and answers with Arrive.
    void OnSend(std::function<void(std::string&)> responder) { mResponder = std::move(responder); }
    /// Bytes arrive lDelay ms from now, whatever is sent.
    void Arrive(std::string sBytes, std::int32_t lDelay = 0);
    bool ScriptDone() const { return mSteps.empty(); }

    // -- Faults and facts that a test sets

    bool mFunctional = true;
    bool mDsr = true;
    std::string mTarget;    ///< what the port stands for
    std::string mWhyClosed; ///< why it did not open or was lost
    std::int32_t mLineErrors = 0;
    /// Bytes that leave the transmit queue per ms; nothing leaves at 0; all at once when not set.
    std::optional<double> mDrainPerMs;
    std::int32_t mLineTimeLeft = 0; ///< ms that the line still needs for what was written
    /// Called before the port opens; may raise.
    std::function<void()> mOnOpen;
    /// Called with each beginning and end of a break; may raise.
    std::function<void(bool)> mOnBreak;
    /// Called with each new receive threshold.
    std::function<void(std::int16_t)> mOnThreshold;
    /// The ports that there are; when none is named every port opens and none is valid.
    std::set<std::int16_t> mValidPorts;
    std::vector<std::int16_t> mProbed;
    /// The device goes away.
    void Vanish();
    bool mReachable = true; ///< whether opening would not be kept waiting
    bool ReachPort() override { return mReachable; }

    // -- Transfers

    /// One state that a transfer reports, lDelay ms after the one before it.
    struct Reported {
        std::int32_t delay;
        std::int16_t state;
        std::int32_t bytes = 0;
        std::string heard{}; ///< what came instead of a packet; the transfer's look judges it
    };
    /// What the next transfer reports, from the moment a file is assigned.
    std::vector<Reported> mTransfer;
    std::int32_t mTransferSize = 0;
    std::string mTransferName;
    /// How long the first packet of the next transfer is held back.
    std::int32_t TransferHold() const { return mLook.holdMs; }
    /// What an abort makes the control report, when set.
    std::optional<std::int16_t> mAnswerToAbort;
    /// Called with each abort; may raise.
    std::function<void()> mOnAbort;

    // -- What happened

    /// Settings, opens, closes and modes in their order, such as "Settings 9600,N,8,1" or "Open".
    std::vector<std::string> mLog;
    /// The flushes of the open port: "Receive" and "Transmit".
    std::vector<std::string> mFlushes;
    std::string mSent;
    std::string mTerminalText;
    bool mKeepsPort = false;
    bool HasSink() const { return static_cast<bool>(mSink); }

    // -- SerialControl

    bool IsFunctional() const override { return mFunctional; }
    std::int16_t PortNumber() const override { return mPortNumber; }
    void SetPortNumber(std::int16_t iPort) override;
    std::string PortTarget() const override { return mTarget; }
    std::string WhyClosed() const override { return mWhyClosed; }
    std::string PortSettings() const override { return mSettings; }
    void SetPortSettings(const std::string& sSettings) override;
    std::int16_t Handshaking() const override { return mHandshaking; }
    void SetHandshaking(std::int16_t iMode) override;
    bool PortOpen() const override { return mOpen; }
    void SetPortOpen(bool bOpen) override;
    void KeepPort(bool bOn) override { mKeepsPort = bOn; }
    bool ProbePort(std::int16_t iPort) override;
    bool DSRState() const override { return mOpen && mDsr; }
    std::int16_t ReceiveThreshold() const override { return mThreshold; }
    void SetReceiveThreshold(std::int16_t iBytes) override;
    void SetBufferSizes(std::int32_t lReceive, std::int32_t lTransmit) override;
    std::int32_t TransmitBufferSize() const override { return mTransmitSize; }
    std::int32_t ReceiveCount() const override;
    std::int32_t TransmitCount() const override;
    std::int32_t LineTimeLeft() const override { return mLineTimeLeft; }
    std::int32_t LineErrorCount() const override { return mLineErrors; }
    void FlushReceive() override;
    void FlushTransmit() override;
    std::string Read() override;
    std::string ReadLine(std::int32_t lTimeout) override;
    bool WaitForReceive(std::int32_t lTimeout) override;
    void HoldBreak(bool bOn) override;
    void Write(std::string_view sBytes) override;
    void SetTransferKind(std::int16_t iKind) override;
    void SetBinaryProtocol(std::int16_t iProtocol) override;
    void SetTransferLook(TransferLook look) override { mLook = std::move(look); }
    void SendFile(const std::string& sPath) override;
    void ReceiveFile(const std::string& sPath) override;
    std::int16_t TransferState() const override { return mTransferState; }
    void SetTransferState(std::int16_t iState) override;
    std::int32_t TransferBytes() const override { return mTransferBytes; }
    std::int32_t TransferSize() const override { return mTransferSize; }
    std::string TransferFileName() const override { return mTransferName; }
    void SetTransferFileName(std::string_view sName) override { mTransferName = sName; }
    std::int16_t ReceiveMode() const override { return mReceiveMode; }
    void SetReceiveMode(std::int16_t iMode) override;
    void SetReserved(std::int16_t iValue) override { mReserved = iValue; }
    void WriteTerminal(std::string_view sText) override { mTerminalText += sText; }
    const std::string& Tag() const override { return mTag; }
    void SetTag(std::string_view sTag) override { mTag = sTag; }
    void SetEventSink(EventSink sink) override {
        mSink = std::move(sink);
        mSignalled = 0; // a new one hears of what waits
    }
    std::int16_t Reserved() const { return mReserved; }

  private:
    struct Arrival {
        std::int64_t due;
        std::string bytes;
    };
    struct Step {
        std::string expected;
        std::vector<std::pair<std::int32_t, std::string>> replies;
    };

    std::optional<std::int64_t> NextDue() const override;
    void Dispatch() override;
    void TakeArrivals() const;
    bool OwesReceive() const;
    std::string TakeLine(std::size_t at);
    bool WaitUntil(std::int64_t time);
    void Empty();
    void DropArrived();
    void StartTransfer(const std::string& what);
    void ReportLater(const Reported& reported, std::int32_t delay);
    void PlayScript();

    ManualLoop& mLoop;
    EventSink mSink;
    std::deque<Step> mSteps;
    std::function<void(std::string&)> mResponder;
    std::string mUnmatched;
    mutable std::deque<Arrival> mArrivals;
    mutable std::string mWaiting;
    std::size_t mSignalled = 0;
    bool mVanished = false;
    std::int64_t mDrainedAt = 0;
    std::int32_t mQueued = 0;

    TransferLook mLook;
    std::int16_t mTransferState = 0;
    std::int32_t mTransferBytes = 0;
    std::int16_t mPortNumber = 0;
    std::string mSettings = "9600,N,8,1";
    std::int16_t mHandshaking = 0;
    bool mOpen = false;
    std::int16_t mThreshold = 0;
    std::size_t mReceiveSize = 4096;
    std::int32_t mTransmitSize = 512;
    std::int16_t mReceiveMode = 0;
    std::int16_t mReserved = 0;
    std::string mTag;
};

} // namespace qncomm::testing

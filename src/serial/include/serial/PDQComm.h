#pragma once

#include "link/SerialControl.h"
#include "platform/Reactor.h"
#include "serial/ByteChannel.h"
#include "serial/LineSettings.h"
#include "serial/PortBindings.h"
#include "serial/TransferPreferences.h"
#include "trace/TraceSink.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

class ReceivePath;
class TransferInProgress;
class TransmitQueue;

/// Why a port did not open, or went away.
struct PortFailure {
    std::int32_t number = 0; ///< a SerialErrorNumber
    IoResult reason;         ///< what the channel said
    std::string description; ///< names the port, its address, the reason and a holder
};

/// The serial control: one port of this machine, a socket or the virtual printer, behind the
/// interface that the link drives. Errors are raised with source "PDQComm".
///
/// A channel that has been used is kept, closed, so that the virtual printer keeps its state and a
/// socket can be used again at once.
class PDQComm final : public SerialControl {
  public:
    /// The reactor, and the trace if there is one, outlive the control. The port is closed, number
    /// 1, and set to 9600,N,8,1.
    PDQComm(Reactor& reactor, PortBindings bindings, TraceSink* trace = nullptr,
            ChannelFactory factory = MakeChannel);
    ~PDQComm() override;
    PDQComm(const PDQComm&) = delete;
    PDQComm& operator=(const PDQComm&) = delete;

    // -- What the link drives

    bool IsFunctional() const override { return true; }
    std::int16_t PortNumber() const override { return mPortNumber; }
    void SetPortNumber(std::int16_t iPort) override;
    std::string PortTarget() const override;
    std::string WhyClosed() const override;
    std::string PortSettings() const override { return mSettingsText; }
    void SetPortSettings(const std::string& sSettings) override;
    std::int16_t Handshaking() const override;
    void SetHandshaking(std::int16_t iMode) override;
    bool PortOpen() const override { return mOpen != nullptr; }
    void SetPortOpen(bool bOpen) override;
    void KeepPort(bool bOn) override;
    bool ReachPort() override;
    bool ProbePort(std::int16_t iPort) override;
    bool DSRState() const override;
    std::int16_t ReceiveThreshold() const override;
    void SetReceiveThreshold(std::int16_t iBytes) override;
    void SetBufferSizes(std::int32_t lReceive, std::int32_t lTransmit) override;
    std::int32_t TransmitBufferSize() const override;
    std::int32_t ReceiveCount() const override;
    std::int32_t TransmitCount() const override;
    std::int32_t LineTimeLeft() const override;
    std::int32_t LineErrorCount() const override { return mLineErrorCount; }
    void FlushReceive() override;
    void FlushTransmit() override;
    std::string Read() override;
    std::string ReadLine(std::int32_t lTimeout) override;
    bool WaitForReceive(std::int32_t lTimeout) override;
    void HoldBreak(bool bOn) override;
    void Write(std::string_view sBytes) override;
    void SetTransferKind(std::int16_t iKind) override { mTransferKind = iKind; }
    void SetTransferLook(TransferLook look) override { mTransferLook = std::move(look); }
    void SetBinaryProtocol(std::int16_t iProtocol) override { mBinaryProtocol = iProtocol; }
    void SendFile(const std::string& sPath) override;
    void ReceiveFile(const std::string& sPath) override;
    std::int16_t TransferState() const override { return mTransferState; }
    void SetTransferState(std::int16_t iState) override;
    std::int32_t TransferBytes() const override { return mTransferBytes; }
    std::int32_t TransferSize() const override { return mTransferSize; }
    std::string TransferFileName() const override;
    void SetTransferFileName(std::string_view sName) override;
    std::int16_t ReceiveMode() const override { return mReceiveMode; }
    void SetReceiveMode(std::int16_t iMode) override { mReceiveMode = iMode; }
    void SetReserved(std::int16_t iValue) override { mReserved = iValue; }
    void WriteTerminal(std::string_view sText) override;
    const std::string& Tag() const override { return mTag; }
    void SetTag(std::string_view sTag) override { mTag = sTag; }
    void SetEventSink(EventSink sink) override;

    // -- For the host

    /// Which address each port number stands for. A change counts from the next opening.
    PortBindings& Bindings() { return mBindings; }
    /// The same, to read.
    const PortBindings& Bindings() const { return mBindings; }

    /// Why the last opening failed, or why the open port went away; nothing after an opening that
    /// went well. It stays readable after the link has dropped the error.
    const std::optional<PortFailure>& LastFailure() const { return mLastFailure; }
    /// How an open port was lost the last time, also after it was opened again; empty when none
    /// was.
    const std::optional<PortFailure>& LastLoss() const { return mLastLoss; }

    /// Such as "COM3 (/dev/ttyUSB0)".
    std::string PortName() const;

    /// Holds the open line in the break condition, which stops a printer's running program, or ends
    /// it. The outcome says when the port is closed or its channel has no line.
    IoResult SetBreak(bool bOn);

    /// Who shows text of the terminal; an empty function shows none.
    using TerminalSink = std::function<void(std::string_view sText)>;
    /// Takes the place of the last one. Called from within Yield and from WriteTerminal.
    void SetTerminalSink(TerminalSink sink) { mTerminal = std::move(sink); }

    /// Keys typed at the terminal, to the line. Takes as many bytes as there is space for and
    /// returns how many; none while the port is closed or a transfer has it.
    std::size_t TypeKeys(std::string_view sKeys);

    /// How the next transfers are done.
    void SetTransferPreferences(TransferPreferences preferences) { mPreferences = preferences; }
    /// Why the last transfer failed; empty when it did not.
    const std::string& TransferReason() const { return mTransferReason; }

  private:
    /// A channel that has been used, kept by its address.
    struct KnownChannel {
        std::unique_ptr<ByteChannel> channel;
        bool saidNoLines = false; ///< the trace has told that it has no modem lines
    };

    void Open();
    void Close();
    KnownChannel& ChannelFor(const PortAddress& address);
    PortFailure FailureFor(const IoResult& reason) const;
    /// Records why the port did not open and raises it.
    [[noreturn]] void Refuse(const IoResult& reason);
    void Apply(const LineSettings& settings);
    void TraceOpened(KnownChannel& known) const;

    void OnChannel(FdEvents events);
    /// Takes from the channel what the receive buffer has space for.
    void Receive();
    void Note(const LineErrors& errors);
    /// Gives the channel what is queued.
    void Send();
    void WantEvents();
    /// Waits without dispatching until bytes have come, sending meanwhile; false when time is up or
    /// the port is gone.
    bool Await(std::int64_t until);
    /// Hands bytes to the open channel; how many it took, nothing when the port was lost.
    std::optional<std::size_t> HandOver(std::string_view bytes);
    /// How long the line takes for so many bytes, in µs.
    std::int64_t LineTimeUs(std::size_t bytes) const;
    void ScheduleDrain();
    /// Calls the sink for what is due. Only from within Yield.
    void FireEvents();
    void ScheduleEvents();
    void Raise(SerialEvent event) const;
    void Lose(const IoResult& reason);

    void StartTransfer(bool sends, const std::string& path);
    /// Lets the transfer work: what is due, what goes out, its end.
    void RunTransfer();
    /// Gives the line what the transfer has for it, as far as it takes it.
    void SendForTransfer();
    void ScheduleTransfer();
    /// Whether what the line took has left it, as far as it tells, or has had its time.
    bool LastBytesGone();
    void EndTransfer();
    /// Waits a moment, dispatching nothing, until what the line took has left it.
    void LetLastWordsLeave();
    void OnTransferState(std::int16_t state);
    void Trace(TraceKind kind, std::string_view bytes) const;

    Reactor& mReactor;
    PortBindings mBindings;
    TraceSink* mTrace;
    ChannelFactory mFactory;
    std::map<std::string, KnownChannel> mChannels;
    ByteChannel* mOpen = nullptr; ///< the open one of them
    std::unique_ptr<ReceivePath> mReceive;
    std::unique_ptr<TransmitQueue> mTransmit;
    std::unique_ptr<Alarm> mFire;  ///< an event waits for the next Yield
    std::unique_ptr<Alarm> mDrain; ///< wakes a waiting link when what was sent has left
    FdEvents mWanted;              ///< what the open channel was asked to report

    bool mKeepsPort = false;
    std::int16_t mPortNumber = 1;
    std::string mSettingsText = "9600,N,8,1";
    LineSettings mSettings;
    std::int16_t mReceiveMode = ReceiveToLink;
    std::int16_t mReserved = 0;
    std::string mTag;
    std::shared_ptr<const EventSink> mSink;
    TerminalSink mTerminal;
    std::int16_t mTransferKind = TransferKermit;
    TransferLook mTransferLook; ///< for the next transfer
    std::int16_t mBinaryProtocol = BinaryZModem;
    TransferPreferences mPreferences;
    std::unique_ptr<TransferInProgress> mTransfer;
    std::unique_ptr<Alarm> mTransferDue;
    bool mTransferStarted = false;
    bool mTransferWaitsForLine = false; ///< it has more than the line took
    std::int64_t mTransferLimitUs =
        0; ///< when the end is reported although bytes wait; 0 = not set
    std::int16_t mTransferState = TransferIdle;
    std::int32_t mTransferBytes = 0;
    std::int32_t mTransferSize = 0;
    std::string mTransferName;
    std::string mTransferReason;

    LineErrors mLineErrors; ///< that are still to be reported
    std::int32_t mLineErrorCount = 0;
    std::int64_t mLineFreeUs = 0; ///< when the line can have carried all that the channel took
    bool mLossWaits = false;      ///< the loss of the port is still to be reported
    std::optional<PortFailure> mLastFailure;
    std::optional<PortFailure> mLastLoss;
};

} // namespace qncomm

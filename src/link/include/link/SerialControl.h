#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// What a serial control reports through its event sink. The link takes no action on the line
/// errors.
enum SerialEvent : std::int16_t {
    SerialEventSend = 1,               ///< what was written has left
    SerialEventReceive = 2,            ///< as many bytes wait as the receive threshold names
    SerialEventTransfer = 100,         ///< the state of the transfer has changed
    SerialEventFrame = 1004,           ///< a byte did not end where it should
    SerialEventOverrun = 1006,         ///< the device lost a byte: the next one came too early
    SerialEventReceiveOverflow = 1008, ///< the system's buffer was full
    SerialEventParity = 1009,          ///< a byte had the wrong parity bit
    /// The device went away while it was open; the control has closed the port.
    SerialEventPortLost = 2000,
};

/// Where received text goes.
enum ReceiveModeValue : std::int16_t {
    ReceiveToLink = 0,     ///< to the link's replies
    ReceiveToTerminal = 2, ///< to the control's terminal
};

/// What a transfer in progress is about.
enum TransferKindValue : std::int16_t {
    TransferKermit = 0, ///< a file by Kermit
    TransferBinary = 2, ///< a file by the chosen BinaryProtocol
};

/// The protocols of binary transfers.
enum BinaryProtocol : std::int16_t {
    BinaryZModem = 5, ///< ZModem
    BinaryKermit = 6, ///< Kermit
};

/// Where a transfer stands. A control reports TransferStarted before any other state of a transfer
/// and ends with TransferIdle or TransferFailed.
enum TransferStateCode : std::int16_t {
    TransferPending = -2,     ///< nothing reported yet
    TransferFailed = -1,      ///< the last one ended without its file
    TransferIdle = 0,         ///< none, or the last one is over
    TransferStarted = 1,      ///< the other side is looked for
    TransferAnnounced = 2,    ///< a file is announced: its name and size can be read
    TransferMoving = 4,       ///< the file's bytes are on the way
    TransferAborting = 6,     ///< written to abort
    TransferClosing = 7,      ///< its end is being agreed on
    TransferAbortRequest = 9, ///< the control asks to be told to abort
};

/// What a transfer looks for while the other side has not begun to speak its protocol.
struct TransferLook {
    /// Given all that has come since the transfer was started: whether it says that there will be
    /// none. The transfer then ends as TransferFailed with no further byte sent, and what has come
    /// can be read. Null: nothing is looked for.
    std::function<bool(std::string_view heard)> refused;
    /// For how many ms without a byte the first packet is held back, so that a refusal that is on
    /// its way comes before it; 0 sends it at once.
    std::int32_t holdMs = 0;
};

/// The serial control's own error numbers, raised as QNError with source "PDQComm".
enum SerialErrorNumber : std::int32_t {
    SerialErrNoSuchPort =
        8002,                 ///< the port number is bound to nothing, or its device does not exist
    SerialErrPortBusy = 8005, ///< the port is held by another program
    SerialErrDevice = 8012, ///< the device is there and refuses: permission, settings, input/output
};

/// The serial control that the link drives: one port, opened and closed, with a receive path, a
/// transmit queue, an event sink and a tag. Single-threaded; the control calls the sink only from
/// within MessageLoop::Yield.
///
/// Members raise QNError with the numbers above, or 5 for a settings text that does not parse;
/// reading and writing on a closed port does nothing and returns what an empty port would.
class SerialControl {
  public:
    virtual ~SerialControl() = default;

    /// False for a stand-in that only carries properties (a form at design time): the link leaves
    /// it unconfigured.
    virtual bool IsFunctional() const = 0;

    // -- Settings. On an open port they take effect at once.

    /// 0 to 16; what a number is bound to is the control's business.
    virtual std::int16_t PortNumber() const = 0;
    /// An open port is closed and the other one opened; when that fails the port stays closed and
    /// the number is the new one. A number without a port is refused by the opening.
    virtual void SetPortNumber(std::int16_t iPort) = 0;

    /// What the port number stands for now, such as a device or an address; empty for a control
    /// whose ports are but numbers, or a number that stands for nothing.
    virtual std::string PortTarget() const { return {}; }
    /// Why the port did not open or was lost, as a sentence for a person; empty when neither, or
    /// when the control does not tell.
    virtual std::string WhyClosed() const { return {}; }

    /// Baud rate, parity letter (either case), data bits, stop bits, such as "9600,N,8,1".
    virtual std::string PortSettings() const = 0;
    /// Raises 5 for a text that does not parse and SerialErrDevice for settings that the open line
    /// does not take; the settings then stay as they were.
    virtual void SetPortSettings(const std::string& sSettings) = 0;

    /// Bit 0: Xon/Xoff, bit 1: RTS/CTS.
    virtual std::int16_t Handshaking() const = 0;
    /// Other bits have no effect. Raises as SetPortSettings does.
    virtual void SetHandshaking(std::int16_t iMode) = 0;

    // -- Opening

    /// Whether the port is open; false as well once it was lost.
    virtual bool PortOpen() const = 0;

    /// Opens the port with the settings, or closes it. Opening an open port or closing a closed one
    /// does nothing. Closing discards what has not been sent: a close never waits for the line.
    virtual void SetPortOpen(bool bOpen) = 0;

    /// While it is on, a port that is closed stays reserved for this control, which opens it again:
    /// another program of this system finds it busy. A control whose ports nobody else can take
    /// need not do anything.
    virtual void KeepPort(bool bOn) { static_cast<void>(bOn); }

    /// Begins to connect to the chosen port with its settings, or looks how far that is, without
    /// waiting: whether SetPortOpen would not be kept waiting by a far side that does not answer.
    /// Yield goes on with it. True as well once it has failed, which SetPortOpen then tells, and
    /// for what need not be connected to.
    virtual bool ReachPort() { return true; }

    /// Whether port iPort could be opened now. Opens nothing that another holds and leaves nothing
    /// open.
    virtual bool ProbePort(std::int16_t iPort) = 0;

    /// Whether the open port holds DSR. A line without modem lines reads as held.
    virtual bool DSRState() const = 0;

    // -- Receiving and sending

    /// Bytes that must wait before a receive event fires; 0 turns the events off. Reading works in
    /// either case.
    virtual std::int16_t ReceiveThreshold() const = 0;
    /// With as many bytes waiting already the event fires on the next Yield.
    virtual void SetReceiveThreshold(std::int16_t iBytes) = 0;

    /// Sizes of the receive and transmit buffers in bytes, at least 1. What waits is kept.
    virtual void SetBufferSizes(std::int32_t lReceive, std::int32_t lTransmit) = 0;
    /// The size of the transmit buffer in bytes.
    virtual std::int32_t TransmitBufferSize() const = 0;

    /// Bytes received and not read yet.
    virtual std::int32_t ReceiveCount() const = 0;
    /// Bytes given to Write that have not left for the line, as far as the device tells.
    virtual std::int32_t TransmitCount() const = 0;
    /// How many ms the line still needs at its rate for what was written, if the device has only
    /// taken it and not sent it yet: adapters, device servers and pseudo-terminals take more than
    /// they tell of. 0 once the bytes have had their time, and for a control without a line.
    virtual std::int32_t LineTimeLeft() const { return 0; }

    /// How often the device has told of a damaged byte since the control was made: a frame or
    /// parity error, or a byte that was lost. Grows by one or more for each event that tells of
    /// such.
    virtual std::int32_t LineErrorCount() const { return 0; }

    /// Throws away what was received and not read.
    virtual void FlushReceive() = 0;
    /// Throws away what was written and has not left, as far as it can be taken back.
    virtual void FlushTransmit() = 0;

    /// Takes everything that waits, at most the receive buffer's size.
    virtual std::string Read() = 0;

    /// Takes one line and returns it without its line end, waiting up to lTimeout ms for it without
    /// dispatching anything; on a time-out what has come so far.
    virtual std::string ReadLine(std::int32_t lTimeout) = 0;

    /// Sleeps until bytes wait or lTimeout ms have passed, without dispatching anything. Returns
    /// whether bytes wait.
    virtual bool WaitForReceive(std::int32_t lTimeout) = 0;

    /// Holds the open line in the break condition, which stops a printer's running program, or ends
    /// it. Raises SerialErrDevice for a port that has no line which could break.
    virtual void HoldBreak(bool bOn) = 0;

    /// Queues bytes for the line. The caller keeps to the free space (TransmitBufferSize less
    /// TransmitCount).
    virtual void Write(std::string_view sBytes) = 0;

    // -- Transfers. While one is in progress its bytes belong to it, whatever the receive
    // threshold: they are neither counted nor read here. Each change of its state fires
    // SerialEventTransfer.

    /// A TransferKindValue, for the next transfer.
    virtual void SetTransferKind(std::int16_t iKind) = 0;
    /// Protocol of the binary transfers, a BinaryProtocol.
    virtual void SetBinaryProtocol(std::int16_t iProtocol) = 0;
    /// What the next transfer looks for at its beginning; without this it looks for nothing.
    virtual void SetTransferLook(TransferLook look) = 0;
    /// Starts sending a file of this machine. A file that cannot be read, an unknown protocol and a
    /// closed port show as TransferFailed.
    virtual void SendFile(const std::string& sPath) = 0;
    /// Starts receiving into a file of this machine, which stands whole or not at all when the
    /// transfer is over.
    virtual void ReceiveFile(const std::string& sPath) = 0;
    /// A TransferStateCode.
    virtual std::int16_t TransferState() const = 0;
    /// TransferAborting aborts; other values do nothing.
    virtual void SetTransferState(std::int16_t iState) = 0;
    /// Bytes of the file that have travelled, at most the largest 32-bit number.
    virtual std::int32_t TransferBytes() const = 0;
    /// Bytes of the whole file, at most the largest 32-bit number; 0 when the other side did not
    /// tell.
    virtual std::int32_t TransferSize() const = 0;
    /// The name that travels.
    virtual std::string TransferFileName() const = 0;
    /// Set by the link to the target it remembers.
    virtual void SetTransferFileName(std::string_view sName) = 0;

    // -- Routing

    /// A ReceiveModeValue; what the link does with received text follows it.
    virtual std::int16_t ReceiveMode() const = 0;
    /// Takes effect with the next byte that is routed.
    virtual void SetReceiveMode(std::int16_t iMode) = 0;

    /// A stored value without effect, kept for hosts that set it.
    virtual void SetReserved(std::int16_t iValue) = 0;

    /// Writes text to the control's terminal.
    virtual void WriteTerminal(std::string_view sText) = 0;

    /// Free text for the user of the control; the link keeps its mark of exclusive use here.
    virtual const std::string& Tag() const = 0;
    /// Replaces the text.
    virtual void SetTag(std::string_view sTag) = 0;

    /// Receives the events, from within MessageLoop::Yield. It may call any member of the control,
    /// this one included, and may yield again.
    using EventSink = std::function<void(SerialEvent)>;
    /// Who receives the events; an empty function detaches. Attaching with bytes waiting fires on
    /// the next Yield.
    virtual void SetEventSink(EventSink sink) = 0;
};

} // namespace qncomm

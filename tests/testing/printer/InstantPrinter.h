#pragma once

#include "common/MessageLoop.h"
#include "link/SerialControl.h"

#include <functional>
#include <string>
#include <string_view>

/// A serial control at whose end every command line is answered at once, together with the loop
/// that brings the answer: what is measured above it is the core alone.
class InstantPrinter : public qncomm::SerialControl, public qncomm::MessageLoop {
  public:
    /// The reply to a command line (without its line end), the closing "Ok" included.
    using Answer = std::function<std::string(const std::string& line)>;

    explicit InstantPrinter(Answer answer);

    // -- MessageLoop: a wait is over at once

    std::int64_t NowMs() const override { return mNow; }
    void Yield(std::int32_t lLimit) override;
    std::unique_ptr<qncomm::RunningTimer> StartTimer(std::int32_t lInterval,
                                                     std::function<void()> handler) override;

    // -- SerialControl

    bool IsFunctional() const override { return true; }
    std::int16_t PortNumber() const override { return 1; }
    void SetPortNumber(std::int16_t /*iPort*/) override {}
    std::string PortSettings() const override { return "9600,N,8,2"; }
    void SetPortSettings(const std::string& /*sSettings*/) override {}
    std::int16_t Handshaking() const override { return 0; }
    void SetHandshaking(std::int16_t /*iMode*/) override {}
    bool PortOpen() const override { return mOpen; }
    void SetPortOpen(bool bOpen) override { mOpen = bOpen; }
    bool ProbePort(std::int16_t /*iPort*/) override { return true; }
    bool DSRState() const override { return true; }
    std::int16_t ReceiveThreshold() const override { return 1; }
    void SetReceiveThreshold(std::int16_t /*iBytes*/) override {}
    void SetBufferSizes(std::int32_t /*lReceive*/, std::int32_t /*lTransmit*/) override {}
    std::int32_t TransmitBufferSize() const override { return BufferSize; }
    std::int32_t ReceiveCount() const override;
    std::int32_t TransmitCount() const override { return 0; }
    void FlushReceive() override { mWaiting.clear(); }
    void FlushTransmit() override {}
    std::string Read() override;
    std::string ReadLine(std::int32_t /*lTimeout*/) override { return {}; }
    bool WaitForReceive(std::int32_t /*lTimeout*/) override { return !mWaiting.empty(); }
    void HoldBreak(bool /*bOn*/) override {}
    void Write(std::string_view sBytes) override;
    void SetTransferKind(std::int16_t /*iKind*/) override {}
    void SetBinaryProtocol(std::int16_t /*iProtocol*/) override {}
    void SetTransferLook(qncomm::TransferLook /*look*/) override {}
    void SendFile(const std::string& /*sPath*/) override {}
    void ReceiveFile(const std::string& /*sPath*/) override {}
    std::int16_t TransferState() const override { return qncomm::TransferIdle; }
    void SetTransferState(std::int16_t /*iState*/) override {}
    std::int32_t TransferBytes() const override { return 0; }
    std::int32_t TransferSize() const override { return 0; }
    std::string TransferFileName() const override { return {}; }
    void SetTransferFileName(std::string_view /*sName*/) override {}
    std::int16_t ReceiveMode() const override { return mMode; }
    void SetReceiveMode(std::int16_t iMode) override { mMode = iMode; }
    void SetReserved(std::int16_t /*iValue*/) override {}
    void WriteTerminal(std::string_view /*sText*/) override {}
    const std::string& Tag() const override { return mTag; }
    void SetTag(std::string_view sTag) override { mTag = sTag; }
    void SetEventSink(EventSink sink) override { mSink = std::move(sink); }

  private:
    static constexpr std::int32_t BufferSize = 4096;

    Answer mAnswer;
    EventSink mSink;
    std::string mLine;
    std::string mWaiting;
    std::size_t mRead = 0; ///< how much of mWaiting was read
    std::string mTag;
    std::int64_t mNow = 0;
    std::int16_t mMode = 0;
    bool mOpen = false;
};

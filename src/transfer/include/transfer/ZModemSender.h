#pragma once

#include "transfer/TransferEngine.h"

#include <memory>

namespace qncomm::transfer {

/// What a sender wants.
struct ZModemSenderOptions {
    /// Put before the first header, such as the command that starts a receiver.
    std::string sGreeting;
    /// What the receiver shall send to interrupt, up to 31 bytes; empty: nothing.
    std::string sAttention;
    /// Longest content of a subpacket, 32 to 8192 bytes; every receiver takes 1024.
    std::size_t subpacket = 1024;
    bool escapeControls = false;              ///< escape all control characters
    std::uint64_t window = 0;                 ///< most bytes under way, 0: found out from the line
    bool crc32 = true;                        ///< 32-bit sums when the receiver can
    Time patience = std::chrono::seconds(50); ///< fail after this long without a valid header
};

/// Sends a batch of files by ZModem.
class ZModemSender final : public TransferEngine {
  public:
    /// Does nothing before Start. The options are to be within their ranges.
    explicit ZModemSender(ZModemSenderOptions options = {});
    ~ZModemSender() override;

  protected:
    void OnStart(Time now) override;
    bool OnInput(Time now) override;
    void OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) override;
    void OnTimer(Time now) override;
    void OnSilence(Time now) override;
    void OnProduce(Time now) override;
    void OnGiveUp(const std::string& sReason) override;

  private:
    enum class State;
    struct Machine;

    void OnHeader(Time now);
    void OnReceiverReady(Time now);
    void OnReposition(std::uint64_t position, Time now);
    void OnAcknowledge(std::uint64_t position, Time now);
    void OnOther(std::uint8_t type, Time now);
    void OnNextFile(const transfer::Answer& answer, Time now);
    void OnRead(const transfer::Answer& answer, Time now);
    void Repeat(Time now);
    void SendAttention(Time now);
    void SendFile(Time now);
    void SendPiece(Time now);
    void SendEof(Time now);
    void SendFinish(Time now);
    void StartData(std::uint64_t position, Time now);
    void AskNextFile();
    void AskRead(std::uint64_t offset);
    void FileDone(bool bWhole);
    [[nodiscard]] std::uint64_t Room() const;

    std::unique_ptr<Machine> m;
};

} // namespace qncomm::transfer

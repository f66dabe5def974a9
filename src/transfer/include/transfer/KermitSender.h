#pragma once

#include "transfer/KermitOptions.h"
#include "transfer/TransferEngine.h"

#include <memory>

namespace qncomm::transfer {

/// Sends a batch of files by Kermit. A file whose `text` is set has its LF line ends sent as CR LF.
class KermitSender final : public TransferEngine {
  public:
    /// Does nothing before Start. The options are to be within their ranges.
    explicit KermitSender(KermitOptions options = {});
    ~KermitSender() override;

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
    struct Slot;
    struct Machine;

    void OnPacket(Time now);
    void OnAck(unsigned sequence, const std::string& data, Time now);
    void OnNak(unsigned sequence, Time now);
    void OnWindowAcknowledged(Time now);
    void OnError(Time now);
    void StopStreaming(unsigned sequence, Time now);
    void DropUnderWay();
    void StartOver(const std::string& sReason, Time now);
    void OnReply(char type, const std::string& data, Time now);
    void OnAttributesReply(const std::string& data);
    void OnTermsAgreed(const std::string& data, Time now);
    void OnNextFile(const transfer::Answer& answer, Time now);
    void OnRead(std::string_view data);
    void SendPacket(char type, const std::string& data, std::size_t content, Time now);
    void Transmit(Slot& slot, Time now);
    void Resend(Slot& slot, Time now);
    void RetireFront(Time now);
    void SendData(Time now);
    void Stream(const std::string& data, std::size_t content);
    void AskNextFile();
    void AnnounceFile(Time now);
    void ArmRetry(Time now);

    std::unique_ptr<Machine> m;
};

} // namespace qncomm::transfer

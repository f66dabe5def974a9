#pragma once

#include "transfer/KermitOptions.h"
#include "transfer/TransferEngine.h"

#include <memory>

namespace qncomm::transfer {

/// Receives a batch of files by Kermit. A file that the sender calls text has its CR LF line ends
/// written as LF.
class KermitReceiver final : public TransferEngine {
  public:
    /// Does nothing before Start. The options are to be within their ranges.
    explicit KermitReceiver(KermitOptions options = {});
    ~KermitReceiver() override;

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

    void OnPacket(Time now);
    void OnDamage(Time now);
    void OnOpening(Time now);
    void OnLaterPacket();
    void Process(Time now);
    void ProcessHeader();
    void ProcessAttributes();
    void ProcessData();
    void ProcessEof();
    void OnOffered(const transfer::Answer& answer, Time now);
    void OnClosed(Time now);
    void AskOffer();
    void TakeNext(Time now);
    void Acknowledge(unsigned sequence, const std::string& data);
    void AcknowledgeData(const std::string& data);
    void SendNak(unsigned sequence);
    void StopStreaming(Time now);
    void AskForFile(Time now);
    [[nodiscard]] bool IsStreaming() const;
    void ArmSilence(Time now);

    std::unique_ptr<Machine> m;
};

} // namespace qncomm::transfer

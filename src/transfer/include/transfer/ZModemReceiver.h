#pragma once

#include "transfer/TransferEngine.h"

#include <memory>

namespace qncomm::transfer {

/// What a receiver wants.
struct ZModemReceiverOptions {
    bool crc32 = true;           ///< let the sender use 32-bit sums
    bool escapeControls = false; ///< ask the sender to escape all control characters
    std::uint16_t buffer = 0;    ///< bytes that are taken before an acknowledgement, 0: any number
    Time patience =
        std::chrono::seconds(50); ///< fail after this long without a valid header or subpacket
};

/// Receives a batch of files by ZModem. A command that the sender asks for is never carried out.
class ZModemReceiver final : public TransferEngine {
  public:
    /// Does nothing before Start. The options are to be within their ranges.
    explicit ZModemReceiver(ZModemReceiverOptions options = {});
    ~ZModemReceiver() override;

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
    void OnAnyTimeHeader(std::uint8_t type, Time now);
    void OnContent(Time now);
    void OnFileContent(Time now);
    void OnDataContent(Time now);
    void OnDataHeader(std::uint64_t position, Time now);
    void OnEof(std::uint64_t position, Time now);
    void OnFin(Time now);
    void OnDamage(bool bHeader, Time now);
    void OnOffered(const transfer::Answer& answer, Time now);
    void OnReadyTimer(Time now);
    void SendSumRequest(Time now);
    void OnSum(std::uint32_t sum, Time now);
    void OfferAnew();
    void SubpacketTaken(Time now);
    void SendReady(Time now);
    void SendReposition(Time now);
    void ArmData(Time now);

    std::unique_ptr<Machine> m;
};

} // namespace qncomm::transfer

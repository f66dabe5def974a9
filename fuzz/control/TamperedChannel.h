#pragma once

#include "Choices.h"
#include "serial/ByteChannel.h"

#include <memory>
#include <string>

namespace qncomm::fuzz {

/// A line on which somebody tampers: what is read of the channel inside is left, changed, replaced,
/// repeated or held back as the fuzzer chooses, and the line may be lost. Nothing is done to it
/// once the choices are used up.
class TamperedChannel final : public ByteChannel {
  public:
    /// The choices outlive the channel.
    TamperedChannel(std::unique_ptr<ByteChannel> inner, Choices& choices)
        : mInner(std::move(inner)), mChoices(choices) {}

    IoResult Open(const LineSettings& settings) override;
    void Close() override { mInner->Close(); }
    IoResult Probe() override { return mInner->Probe(); }
    void Keep(bool bOn) override { mInner->Keep(bOn); }
    IoResult Configure(const LineSettings& settings) override {
        return mInner->Configure(settings);
    }
    IoResult SetBreak(bool bOn) override { return mInner->SetBreak(bOn); }
    IoCount Read(std::span<char> buffer) override;
    IoCount Write(std::string_view bytes) override;
    LineErrors TakeLineErrors() override { return mInner->TakeLineErrors(); }
    std::size_t OutputPending() override { return mInner->OutputPending(); }
    bool IsReliable() const override { return mInner->IsReliable(); }
    void DiscardInput() override;
    void DiscardOutput() override { mInner->DiscardOutput(); }
    std::optional<bool> Dsr() override { return mInner->Dsr(); }
    void Want(FdEvents events) override { mInner->Want(events); }
    void SetHandler(Handler handler) override { mInner->SetHandler(std::move(handler)); }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override;

  private:
    void Tamper(std::string& read);

    std::unique_ptr<ByteChannel> mInner;
    Choices& mChoices;
    std::string mMore; ///< what has been put in and does not fit the reader's buffer
    bool mLost = false;
};

} // namespace qncomm::fuzz

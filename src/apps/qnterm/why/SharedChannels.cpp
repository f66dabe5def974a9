#include "SharedChannels.h"

#include <utility>

namespace qnterm {

struct SharedChannel {
    std::unique_ptr<qncomm::ByteChannel> channel;
    bool open = false;
};

namespace {

using qncomm::ByteChannel;
using qncomm::FdEvents;
using qncomm::IoCount;
using qncomm::IoResult;
using qncomm::LineErrors;
using qncomm::LineSettings;

/// One user's way to a channel that others use, too. The handler is of who has it open.
class LentChannel final : public ByteChannel {
  public:
    explicit LentChannel(std::shared_ptr<SharedChannel> shared)
        : mShared(std::move(shared)), mChannel(*mShared->channel) {}
    ~LentChannel() override { Return(); }
    LentChannel(const LentChannel&) = delete;
    LentChannel& operator=(const LentChannel&) = delete;

    IoResult Open(const LineSettings& settings) override {
        if (mShared->open) return {qncomm::IoStatus::Busy, 0, "open in this window already"};
        mChannel.SetHandler(mHandler);
        IoResult opened = mChannel.Open(settings);
        mOpen = mShared->open = opened.Ok();
        return opened;
    }
    void Close() override { Return(); }
    IoResult Probe() override { return mChannel.Probe(); }
    bool Reach(const LineSettings& settings) override {
        return mShared->open || mChannel.Reach(settings);
    }
    void Keep(bool bOn) override { mChannel.Keep(bOn); }
    IoResult Configure(const LineSettings& settings) override {
        return mChannel.Configure(settings);
    }
    IoResult SetBreak(bool bOn) override { return mChannel.SetBreak(bOn); }
    IoCount Read(std::span<char> buffer) override { return mChannel.Read(buffer); }
    IoCount Write(std::string_view bytes) override { return mChannel.Write(bytes); }
    LineErrors TakeLineErrors() override { return mChannel.TakeLineErrors(); }
    std::size_t OutputPending() override { return mChannel.OutputPending(); }
    bool IsReliable() const override { return mChannel.IsReliable(); }
    void DiscardInput() override { mChannel.DiscardInput(); }
    void DiscardOutput() override { mChannel.DiscardOutput(); }
    std::optional<bool> Dsr() override { return mChannel.Dsr(); }
    void Want(FdEvents events) override { mChannel.Want(events); }
    void SetHandler(Handler handler) override {
        mHandler = std::move(handler);
        if (mOpen) mChannel.SetHandler(mHandler);
    }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override {
        return mChannel.Wait(events, lLimitUs);
    }

  private:
    void Return() {
        if (!std::exchange(mOpen, false)) return;
        mChannel.Close();
        mChannel.SetHandler({});
        mShared->open = false;
    }

    std::shared_ptr<SharedChannel> mShared;
    ByteChannel& mChannel;
    Handler mHandler;
    bool mOpen = false;
};

} // namespace

qncomm::ChannelFactory SharedChannels::Factory() const {
    return [known = mKnown](const qncomm::PortAddress& address, qncomm::Reactor& reactor) {
        std::shared_ptr<SharedChannel>& shared = (*known)[address.text];
        if (shared == nullptr) {
            shared = std::make_shared<SharedChannel>();
            shared->channel = qncomm::MakeChannel(address, reactor);
        }
        return std::make_unique<LentChannel>(shared);
    };
}

} // namespace qnterm

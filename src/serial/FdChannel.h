#pragma once

#include "platform/Fd.h"
#include "serial/ByteChannel.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace qncomm {

/// What channels over a descriptor have in common.
class FdChannel : public ByteChannel {
  public:
    IoCount Read(std::span<char> buffer) override;
    IoCount Write(std::string_view bytes) override;
    void Want(FdEvents events) override;
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override;

  protected:
    /// sLost says what it means when the line is gone.
    FdChannel(Reactor& reactor, std::string sLost)
        : mReactor(reactor), mLostText(std::move(sLost)) {}

    /// Takes the open descriptor into use.
    void Attach(Fd fd);
    /// Gives it back, no longer watched.
    Fd Detach();
    int Handle() const { return mFd.Get(); }
    Reactor& Loop() const { return mReactor; }

    /// The system's write for this kind of descriptor.
    virtual ssize_t Put(std::string_view bytes) = 0;

  private:
    Reactor& mReactor;
    std::string mLostText;
    Fd mFd;
    std::unique_ptr<FdWatch> mWatch;
    Handler mHandler;
};

} // namespace qncomm

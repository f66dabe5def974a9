#pragma once

#include "platform/Fd.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace qncomm::testing {

/// A wire between an adapter and a printer, each a TCP connection, that tells how many bytes have
/// passed. One connection after another.
class Relay {
  public:
    /// printer is such as tcp://127.0.0.1:5000. The loop must outlive the relay.
    Relay(Reactor& loop, const std::string& printer);

    /// Where the adapter connects to.
    std::uint16_t Port() const { return mPort; }
    /// Called once, when as many bytes have passed in both directions together from now on.
    void After(std::size_t bytes, std::function<void()> action);

  private:
    void Accept();
    void Pass(const Fd& from, const Fd& to);

    Reactor& mLoop;
    std::uint16_t mPrinterPort;
    Fd mListener;
    std::uint16_t mPort = 0;
    std::unique_ptr<FdWatch> mComing;
    Fd mAdapter;
    Fd mPrinter;
    std::unique_ptr<FdWatch> mFromAdapter;
    std::unique_ptr<FdWatch> mFromPrinter;
    std::size_t mLeft = 0;
    std::function<void()> mAction;
};

} // namespace qncomm::testing

#pragma once

#include "platform/Fd.h"
#include "platform/Reactor.h"

#include <functional>
#include <memory>
#include <string>

namespace qncomm::testing {

/// The wire between the guest's USB adapter and a printer. The adapter is plugged in while the wire
/// is there: qemu attaches it when its line comes and detaches it when its line goes.
class Relay {
  public:
    /// adapter is the path of qemu's socket, printer such as tcp://127.0.0.1:5000. The loop must
    /// outlive the relay.
    Relay(Reactor& loop, const std::string& adapter, const std::string& printer);

    /// Pulls the adapter out when as many bytes have passed in both directions together, counted
    /// from now on.
    void PullOutAfter(std::size_t bytes) { mLeft = bytes; }
    /// Pulls it out now.
    void PullOut();
    bool IsPulledOut() const { return !mAdapter; }

  private:
    void Pass(const Fd& from, const Fd& to);

    std::size_t mLeft = static_cast<std::size_t>(-1);
    Fd mAdapter;
    Fd mPrinter;
    std::unique_ptr<FdWatch> mFromAdapter;
    std::unique_ptr<FdWatch> mFromPrinter;
};

} // namespace qncomm::testing

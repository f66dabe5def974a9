#pragma once

// Brings a virtual printer and an endpoint together until it is told to stop.

#include "endpoints/Endpoint.h"
#include "endpoints/Sleeper.h"
#include "simulator/VirtualPrinter.h"

#include <cstddef>

namespace qnsim {

/// Carries what a host does to the printer and the printer's answers back, host after host. Single-
/// threaded: all of it happens in Run.
class PrinterServer {
  public:
    /// All are used, not owned; the loop is the one that the endpoint was opened with.
    PrinterServer(VirtualPrinter& printer, Endpoint& endpoint, qncomm::Reactor& loop)
        : mPrinter(printer), mEndpoint(endpoint), mSleeper(loop) {}

    /// Serves until stopped (true) or until the line is cut (false). Sleeps whenever nothing is
    /// due.
    bool Run();
    /// Has Run end; for handlers of the loop.
    void Stop() { mStopped = true; }

  private:
    void CarryOut(const HostAction& action);
    void Exchange();
    void FollowHost();
    /// How many bytes of the host are welcome now.
    std::size_t Room() const;
    void Sleep();

    VirtualPrinter& mPrinter;
    Endpoint& mEndpoint;
    Sleeper mSleeper;
    bool mStopped = false;
    bool mHostThere = false;
    std::string mOutput; ///< taken from the printer, not yet written
    Micros mNow = 0;
    Micros mBefore = 0; ///< of the round before
};

} // namespace qnsim

#pragma once

// Brings a virtual printer and an endpoint together until it is told to stop.

#include "Endpoint.h"
#include "simulator/VirtualPrinter.h"

#include <cstddef>

namespace qnsim {

class PrinterServer {
  public:
    /// stop: a descriptor that becomes readable when the server is to end. Both are used, not
    /// owned.
    PrinterServer(VirtualPrinter& printer, Endpoint& endpoint, int stop)
        : mPrinter(printer), mEndpoint(endpoint), mStop(stop) {}

    /// Serves until stopped (true) or until the line is cut (false). Sleeps whenever nothing is
    /// due.
    bool Run();

  private:
    void CarryOut(const HostAction& action);
    void Exchange();
    void FollowHost();
    /// How many bytes of the host are welcome now.
    std::size_t Room() const;
    bool Wait();

    VirtualPrinter& mPrinter;
    Endpoint& mEndpoint;
    int mStop;
    bool mHostThere = false;
    std::string mOutput; ///< taken from the printer, not yet written
    Micros mNow = 0;
};

} // namespace qnsim

#pragma once

// Brings a recorded session and an endpoint together.

#include "Endpoint.h"
#include "TracePlayer.h"

namespace qnsim {

class ReplayServer {
  public:
    /// stop: a descriptor that becomes readable when the server is to end. All are used, not owned.
    ReplayServer(TracePlayer& player, Endpoint& endpoint, int stop)
        : mPlayer(player), mEndpoint(endpoint), mStop(stop) {}

    /// Serves until the session has been played and the host has left or the recorded line was lost
    /// (the endpoint's end is then the loss), the host did otherwise than
    /// recorded, or the server was stopped. Returns an empty text when the whole session was
    /// played, else where it ended and how.
    std::string Run();

  private:
    void Exchange();
    bool Wait();

    TracePlayer& mPlayer;
    Endpoint& mEndpoint;
    int mStop;
    std::string mOutput; ///< due, not yet written
    Micros mNow = 0;
};

} // namespace qnsim

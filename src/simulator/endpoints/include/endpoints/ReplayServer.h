#pragma once

// Brings a recorded session and an endpoint together.

#include "endpoints/Endpoint.h"
#include "endpoints/Sleeper.h"
#include "endpoints/TracePlayer.h"

namespace qnsim {

/// Lets one host after the other play its side of a recorded session. Single-threaded: all of it
/// happens in Run.
class ReplayServer {
  public:
    /// All are used, not owned; the loop is the one that the endpoint was opened with.
    ReplayServer(TracePlayer& player, Endpoint& endpoint, qncomm::Reactor& loop)
        : mPlayer(player), mEndpoint(endpoint), mSleeper(loop) {}

    /// Serves until the session has been played and the host has left or the recorded line was lost
    /// (the endpoint's end is then the loss), the host did otherwise than
    /// recorded, or the server was stopped. Returns an empty text when the whole session was
    /// played, else where it ended and how.
    std::string Run();
    /// Has Run end; for handlers of the loop.
    void Stop() { mStopped = true; }

  private:
    void Exchange();
    void Sleep();

    TracePlayer& mPlayer;
    Endpoint& mEndpoint;
    Sleeper mSleeper;
    bool mStopped = false;
    std::string mOutput; ///< due, not yet written
    Micros mNow = 0;
};

} // namespace qnsim

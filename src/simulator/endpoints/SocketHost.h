#pragma once

// A listening socket and the one host that is connected to it.

#include "Endpoint.h"

#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// Who may reach a listening socket.
enum class Reach {
    ThisMachine, ///< programs of this machine, over its loopback address
    Everywhere,  ///< whoever reaches this machine
};

/// Takes one host at a time; the next one waits until that has left.
class SocketHost {
  public:
    /// An empty text, or why it cannot listen; errno is the system's number then. port 0 takes any
    /// free one.
    std::string Listen(int port, Reach reach);
    int Port() const { return mPort; }

    /// Takes in a host when none is there. True when one has just come.
    bool Accept();
    bool Connected() const { return mHost.IsOpen(); }
    /// Ends the host's connection.
    void HangUp() { mHost.Close(); }

    void AddWaits(std::vector<pollfd>& waits, bool wantInput, bool wantOutput) const;
    std::string Read(std::size_t max);
    std::size_t Write(std::string_view bytes);

  private:
    Descriptor mListener;
    Descriptor mHost;
    int mPort = 0;
};

} // namespace qnsim

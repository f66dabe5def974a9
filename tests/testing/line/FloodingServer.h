#pragma once

#include "platform/Fd.h"

#include <future>
#include <string>
#include <thread>

namespace qncomm::testing {

/// Says one thing over and over to whoever comes, as fast as it is read, and reads nothing.
class FloodingServer {
  public:
    /// Listens on this machine; nothing to say keeps whoever comes waiting.
    explicit FloodingServer(const std::string& sSays);
    ~FloodingServer();
    FloodingServer(const FloodingServer&) = delete;
    FloodingServer& operator=(const FloodingServer&) = delete;

    /// Its port.
    const std::string& Service() const { return mService; }
    /// Waits until somebody has come and was told something.
    void AwaitGuest() { mFirst.get_future().wait(); }

  private:
    void Serve();

    Fd mListener;
    std::string mService;
    std::string mText;
    std::promise<void> mFirst;
    std::thread mThread;
};

} // namespace qncomm::testing

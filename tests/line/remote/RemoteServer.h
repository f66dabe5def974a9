#pragma once

#include "endpoints/ComPortServer.h"
#include "endpoints/SocketHost.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace qncomm::testing {

/// A server of remote ports on a thread, whose answers a test may bend.
class RemoteServer {
  public:
    /// What is done to each piece that the server would send; it goes out as it comes back.
    using Bend = std::function<std::string(std::string)>;

    explicit RemoteServer(Bend bend = {});
    ~RemoteServer();
    RemoteServer(const RemoteServer&) = delete;
    RemoteServer& operator=(const RemoteServer&) = delete;

    std::string Service() const { return std::to_string(mSocket.Port()); }
    int Connections() const { return mConnections; }

    /// What all hosts have sent, and how often they began a break.
    std::string Heard() const;
    int Breaks() const { return mBreaks; }
    /// How often they took back what had not reached the line.
    int TakenBack() const { return mTakenBack; }
    /// All that the host has sent is heard when it is gone.
    bool HostIsGone() const { return mHostIsGone; }
    std::string Format() const;

    /// Runs on the server's thread, between two pieces of talk.
    void Do(std::function<void(qnsim::ComPortServer&)> what);
    /// Reads nothing meanwhile.
    void SetDeaf(bool deaf);
    /// Ends the connection.
    void HangUp();

  private:
    void Run();
    void Turn();
    void Wake() const;

    Bend mBend;
    Fd mWake;
    PollLoop mLoop;
    qnsim::SocketHost mSocket{mLoop};
    qnsim::ComPortServer mPort;
    std::string mUnsent;
    std::atomic<int> mConnections = 0;
    std::atomic<int> mBreaks = 0;
    std::atomic<int> mTakenBack = 0;
    std::atomic<bool> mHostIsGone = true;
    std::atomic<bool> mStop = false;
    std::atomic<bool> mDeaf = false;
    std::atomic<bool> mHangUp = false;
    mutable std::mutex mMutex; ///< of what follows
    std::string mHeard;
    std::string mFormat;
    std::vector<std::function<void(qnsim::ComPortServer&)>> mToDo;
    std::thread mThread;
};

} // namespace qncomm::testing

#pragma once

#include "platform/Fd.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <future>
#include <string>
#include <thread>

namespace qncomm::testing {

/// How the far end of a line goes on when it has said what it had to say.
enum class Manner {
    Flood,  ///< says one thing over and over, as fast as it is taken
    Crawl,  ///< says one thing over and over, a byte at a time with pauses in between
    Silent, ///< says nothing more
    Vanish, ///< closes the line
};

/// A far end that means harm, on a pseudo-terminal's own side. It waits for the first byte of the
/// program at the line, says its opening, and goes on in its manner; what it hears it throws away.
class HostilePeer {
  public:
    /// What follows the opening: the text of round lRound, from 0.
    using Rounds = std::function<std::string(unsigned lRound)>;

    /// Takes the line. The rounds are asked on the peer's thread.
    HostilePeer(Fd line, std::string sOpening, Manner manner, Rounds rounds = {});
    ~HostilePeer();
    HostilePeer(const HostilePeer&) = delete;
    HostilePeer& operator=(const HostilePeer&) = delete;

    /// Waits until the peer has said so much (64 bytes of a crawl, all of the opening for a silent
    /// one) that only a program that keeps it all would mind, or has lost its hearer.
    void AwaitEnough();

    /// What a flood has said when it is enough, in bytes. Less where the memory of a program says
    /// nothing.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr std::size_t Enough = std::size_t{1} * 1024 * 1024;
#else
    static constexpr std::size_t Enough = std::size_t{32} * 1024 * 1024;
#endif

  private:
    void Run(std::string opening);
    /// Sends it all; false when there is nobody left or the peer is to end.
    bool Say(std::string_view text);
    /// Waits for the line; false when there is nobody left or the peer is to end.
    bool Turn(short events);
    void Tell();

    Fd mLine;
    Manner mManner;
    Rounds mRounds;
    std::size_t mSaid = 0;
    bool mTold = false;
    bool mHeard = false;
    std::atomic<bool> mStop = false;
    std::promise<void> mEnough;
    std::thread mThread;
};

} // namespace qncomm::testing

#include "Relay.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <poll.h>

namespace qncomm::bench {

using qncomm::testing::LineSettings;
using qncomm::testing::PeerProcess;
using qncomm::testing::SimulatedLine;
using transfer::Time;

namespace {

constexpr std::uint64_t Content = 200; // bytes

Time Now() {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

// One direction: what was read and did not fit on the line waits, and so does what the far end does
// not take.
class Direction {
  public:
    Direction(const LineSettings& settings, std::uint64_t seed) : mLine(settings, seed) {
        mLine.Advance(Now());
    }

    // True when bytes moved.
    bool Move(PeerProcess& from, PeerProcess& to) {
        if (mRead.empty()) mRead = from.Read();
        const bool got = !mRead.empty();
        mRead.erase(0, mLine.Write(mRead));
        const Time now = Now();
        mLine.Advance(now);
        mArrived += mLine.Arrived(now);
        const std::size_t sent = to.HasEnded() ? mArrived.size() : to.Write(mArrived);
        mArrived.erase(0, sent);
        return got || sent != 0;
    }
    [[nodiscard]] bool HasBytes() const {
        return !mRead.empty() || !mArrived.empty() || !mLine.IsIdle();
    }
    [[nodiscard]] bool IsBlocked() const { return !mArrived.empty(); }
    [[nodiscard]] bool MayRead() const { return mRead.empty(); }
    [[nodiscard]] const SimulatedLine& Line() const { return mLine; }

  private:
    SimulatedLine mLine;
    std::string mRead;
    std::string mArrived;
};

double Seconds(Time span) {
    return static_cast<double>(span.count()) * 1e-6;
}

short Events(const Direction& from, const Direction& to) {
    return static_cast<short>((from.MayRead() ? POLLIN : 0) | (to.IsBlocked() ? POLLOUT : 0));
}

} // namespace

RelayResult RunRelay(PeerProcess& first, PeerProcess& second, const LineSettings& line,
                     std::uint64_t seed, double limit) {
    Direction forth(line, seed * 2 + 1);
    Direction back(line, seed * 2 + 2);
    const Time start = Now();
    Time firstByte = start;
    Time lastContent = start;
    std::uint64_t contentAt = 0;
    bool begun = false;
    RelayResult result;
    while (Seconds(Now() - start) < limit) {
        const bool ended = first.HasEnded() && second.HasEnded();
        const bool forward = forth.Move(first, second);
        const bool backward = back.Move(second, first);
        if (forward || backward) {
            if (!begun) firstByte = Now();
            begun = true;
            // What is shorter than this is the farewell's.
            if (forth.Line().Carried() >= contentAt + Content) {
                contentAt = forth.Line().Carried();
                lastContent = Now();
            }
            if (line.rate <= 0) continue;
        } else if (ended) {
            result.bothEnded = true;
            break;
        }
        std::array<pollfd, 2> ready{
            {{first.HasEnded() ? -1 : first.Descriptor(), Events(forth, back), 0},
             {second.HasEnded() ? -1 : second.Descriptor(), Events(back, forth), 0}}};
        const bool paced = line.rate > 0 || line.latency > Time{0};
        // A paced line moves on by itself: half a millisecond is six bytes at 115200 baud.
        const timespec step{0, paced && (forth.HasBytes() || back.HasBytes()) ? 500000 : 5000000};
        ppoll(ready.data(), paced && (forth.HasBytes() || back.HasBytes()) ? 0 : 2, &step, nullptr);
    }
    result.seconds = Seconds(Now() - firstByte);
    result.dataSeconds = Seconds(lastContent - firstByte);
    result.faults = forth.Line().Faults() + back.Line().Faults();
    result.carried = forth.Line().Carried();
    return result;
}

} // namespace qncomm::bench

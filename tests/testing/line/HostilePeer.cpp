#include "testing/line/HostilePeer.h"

#include <array>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr int TurnMs = 50; // after which a peer looks whether it is to end
constexpr int PauseMs = 5; // between two bytes of a crawl
constexpr std::size_t EnoughOfACrawl = 64;

} // namespace

HostilePeer::HostilePeer(Fd line, std::string sOpening, Manner manner, Rounds rounds)
    : mLine(std::move(line)),
      mManner(manner),
      mRounds(std::move(rounds)),
      mThread([this, opening = std::move(sOpening)]() mutable { Run(std::move(opening)); }) {}

HostilePeer::~HostilePeer() {
    mStop = true;
    mThread.join();
}

void HostilePeer::AwaitEnough() {
    mEnough.get_future().wait();
}

void HostilePeer::Tell() {
    if (!std::exchange(mTold, true)) mEnough.set_value();
}

bool HostilePeer::Turn(short events) {
    pollfd entry{mLine.Get(), static_cast<short>(events | POLLIN), 0};
    std::array<char, 4096> heard{};
    while (!mStop) {
        if (::poll(&entry, 1, TurnMs) <= 0) {
            if (events == 0) return true;
            continue;
        }
        if ((entry.revents & POLLIN) != 0 && ::read(mLine.Get(), heard.data(), heard.size()) > 0)
            mHeard = true;
        else if ((entry.revents & POLLHUP) != 0) {
            if (mHeard) return false;
            ::poll(nullptr, 0, PauseMs); // nobody has come yet
        }
        if (events == 0 || (entry.revents & POLLOUT) != 0) return true;
    }
    return false;
}

bool HostilePeer::Say(std::string_view text) {
    while (!text.empty()) {
        if (!Turn(POLLOUT)) return false;
        const std::size_t most = mManner == Manner::Crawl ? 1 : text.size();
        const ssize_t taken = ::write(mLine.Get(), text.data(), most);
        if (taken <= 0) continue;
        text.remove_prefix(static_cast<std::size_t>(taken));
        mSaid += static_cast<std::size_t>(taken);
        if (mManner == Manner::Crawl) ::poll(nullptr, 0, PauseMs);
        if (mSaid >= (mManner == Manner::Crawl ? EnoughOfACrawl : Enough)) Tell();
    }
    return true;
}

void HostilePeer::Run(std::string opening) {
    while (!mHeard && Turn(0)) {
    }
    bool there = mHeard && Say(opening);
    if (mManner == Manner::Vanish) mLine.Reset();
    if (mManner == Manner::Vanish || mManner == Manner::Silent) Tell();
    while (there && mManner == Manner::Silent)
        there = Turn(0);
    for (unsigned round = 0; there && mRounds && mManner <= Manner::Crawl; ++round)
        there = Say(mRounds(round));
    Tell();
}

} // namespace qncomm::testing

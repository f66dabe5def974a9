#include "ReplayServer.h"

#include "Clock.h"

#include <algorithm>

namespace qnsim {
namespace {

constexpr std::size_t ReadSize = 64UL * 1024;

} // namespace

std::string ReplayServer::Run() {
    bool wasThere = false;
    for (;;) {
        mNow = MonotonicNow();
        mEndpoint.Refresh();
        Exchange();
        if (!mPlayer.Mismatch().empty()) return mPlayer.Mismatch();
        if (mOutput.empty() && mPlayer.Lost(mNow)) return mPlayer.Missing();
        const bool there = mEndpoint.Connected();
        const bool played = mPlayer.Finished() && mOutput.empty();
        if (played && wasThere && !there) return {};
        wasThere = wasThere || there;
        if (Wait()) return played ? std::string() : mPlayer.Missing();
    }
}

void ReplayServer::Exchange() {
    if (!mEndpoint.Connected()) return;
    for (const HostAction& action : mEndpoint.Receive(ReadSize))
        if (action.kind == HostAction::Kind::Bytes) mPlayer.FromHost(action.text, mNow);
    mOutput += mPlayer.ToHost(mNow);
    if (!mOutput.empty() && mEndpoint.Connected()) mOutput.erase(0, mEndpoint.Write(mOutput));
}

bool ReplayServer::Wait() {
    std::vector<pollfd> waits{{mStop, POLLIN, 0}};
    mEndpoint.AddWaits(waits, true, !mOutput.empty());
    std::optional<Micros> due;
    if (mEndpoint.Connected()) due = mPlayer.NextDue();
    WaitUntil(waits, due);
    return waits.front().revents != 0;
}

} // namespace qnsim

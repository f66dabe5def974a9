#include "endpoints/ReplayServer.h"

#include <algorithm>

namespace qnsim {
namespace {

constexpr std::size_t ReadSize = 64UL * 1024;

} // namespace

std::string ReplayServer::Run() {
    bool wasThere = false;
    for (;;) {
        mNow = mSleeper.Now();
        mEndpoint.Refresh();
        Exchange();
        if (!mPlayer.Mismatch().empty()) return mPlayer.Mismatch();
        if (mOutput.empty() && mPlayer.Lost(mNow)) return mPlayer.Missing();
        const bool there = mEndpoint.Connected();
        const bool played = mPlayer.Finished() && mOutput.empty();
        if (played && wasThere && !there) return {};
        wasThere = wasThere || there;
        Sleep();
        if (mStopped) return played ? std::string() : mPlayer.Missing();
    }
}

void ReplayServer::Exchange() {
    if (!mEndpoint.Connected()) return;
    for (const HostAction& action : mEndpoint.Receive(ReadSize))
        if (action.kind == HostAction::Kind::Bytes) mPlayer.FromHost(action.text, mNow);
    mOutput += mPlayer.ToHost(mNow);
    if (!mOutput.empty() && mEndpoint.Connected()) mOutput.erase(0, mEndpoint.Write(mOutput));
}

void ReplayServer::Sleep() {
    mEndpoint.Want(true, !mOutput.empty());
    std::optional<Micros> due;
    if (mEndpoint.Connected()) due = mPlayer.NextDue();
    mSleeper.SleepUntil(due);
}

} // namespace qnsim

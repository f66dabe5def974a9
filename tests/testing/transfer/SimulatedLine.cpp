#include "testing/transfer/SimulatedLine.h"

#include <algorithm>

namespace qncomm::testing {

using namespace transfer;

namespace {

constexpr std::size_t LogLimit = 65536;

} // namespace

std::size_t SimulatedLine::Write(std::string_view bytes) {
    const std::size_t room = mSettings.buffer - std::min(mSettings.buffer, mWaiting.size());
    const std::size_t taken = std::min(room, bytes.size());
    mWaiting.append(bytes.substr(0, taken));
    if (mLog.size() < LogLimit) mLog.append(bytes.substr(0, taken));
    return taken;
}

void SimulatedLine::Advance(Time now) {
    const Time passed = now - mLast;
    mLast = now;
    if (now < mStalledTo) return;
    std::size_t count = mWaiting.size();
    if (mSettings.rate > 0) {
        mCredit += mSettings.rate * static_cast<double>(passed.count()) * 1e-6;
        count = std::min(count, static_cast<std::size_t>(mCredit));
        mCredit -= static_cast<double>(count);
        const double saved = mSettings.rate * static_cast<double>(mSettings.burst.count()) * 1e-6;
        if (mWaiting.size() == count) mCredit = std::min(mCredit, saved);
    }
    if (count == 0) return;
    std::string bytes = Damage(std::string_view(mWaiting).substr(0, count), now);
    mWaiting.erase(0, count);
    if (!bytes.empty()) mFlying.push_back({now + mSettings.latency, std::move(bytes)});
}

std::string SimulatedLine::Arrived(Time now) {
    std::string bytes;
    while (!mFlying.empty() && mFlying.front().at <= now) {
        bytes += mFlying.front().bytes;
        mFlying.pop_front();
    }
    return bytes;
}

bool SimulatedLine::Chance(double probability) {
    if (probability <= 0) return false;
    const bool hit = static_cast<double>(mRandom() >> 11U) * 0x1p-53 < probability;
    if (hit) ++mFaults;
    return hit;
}

std::string SimulatedLine::Damage(std::string_view bytes, Time now) {
    const LineFaults& faults = mSettings.faults;
    if (faults == LineFaults{} && !mSettings.sevenBits) { // nothing to decide for each byte
        mCarried += bytes.size();
        return std::string(bytes);
    }
    std::string out;
    for (const char c : bytes) {
        if (++mCarried > faults.cutAfter || Chance(faults.drop)) continue;
        char arrived = mSettings.sevenBits ? static_cast<char>(c & 0x7F) : c;
        const bool chosen = mCarried == faults.flipAt;
        mFaults += chosen ? 1 : 0;
        if (chosen || Chance(faults.flip))
            arrived = static_cast<char>(arrived ^ (1 << (mRandom() % 8)));
        out.push_back(arrived);
        if (Chance(faults.repeat)) out.push_back(arrived);
        if (Chance(faults.insert)) out.push_back(static_cast<char>(mRandom() >> 56U));
        if (Chance(faults.stall)) mStalledTo = now + faults.stallFor;
    }
    return out;
}

} // namespace qncomm::testing

#include "EnginePair.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace qncomm::transfer::testing {

namespace {

using namespace std::chrono_literals;

using ZPair = EnginePair<ZModemSender, ZModemReceiver, ZModemSenderOptions, ZModemReceiverOptions>;
using KPair = EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>;

// How many faults each test goes through: a campaign sets more.
std::uint64_t FaultsWanted() {
    const char* wanted = std::getenv("QN_FAULTS"); // NOLINT(concurrency-mt-unsafe): no threads here
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 3000;
}

LineFaults FaultsOf(std::uint64_t seed) {
    LineFaults faults;
    const double rate = (seed / 7) % 2 == 0 ? 1e-3 : 2e-4;
    switch (seed % 7) {
    case 0:
        faults.flip = rate;
        break;
    case 1:
        faults.drop = rate;
        break;
    case 2:
        faults.repeat = rate;
        break;
    case 3:
        faults.insert = rate;
        break;
    case 4:
        faults.stall = 1e-4;
        break;
    case 5:
        faults.cutAfter = 100 + (seed * 7919) % 60000;
        break;
    default:
        faults = {rate / 4, rate / 4, rate / 4, rate / 4, 1e-5, 3s, ~0ULL};
        break;
    }
    return faults;
}

// Whatever the line does: no wrong file, no end that never comes, and a sender that says so only
// when it is so.
template <class Pair>
void Survive(std::uint64_t seed, std::uint64_t& faults) {
    const std::string content = RandomBytes(40000 + (seed * 977) % 30000, seed);
    LineSettings line = PacedLine(seed % 3 == 0 ? 11520 : 115200);
    line.faults = FaultsOf(seed);
    Pair pair({{"first.bin", content}, {"second.bin", "x"}}, line, seed);
    ASSERT_TRUE(pair.rig.Run(900s)) << "seed " << seed;
    EXPECT_LE(pair.rig.Elapsed() - pair.rig.LastByte(), 60s) << "seed " << seed;
    EXPECT_FALSE(pair.sink.bGap);
    const bool cut = line.faults.cutAfter != ~0ULL;
    const auto& whole = pair.sink.Whole();
    EXPECT_TRUE(whole.empty() || whole[0].content == content) << "seed " << seed;
    EXPECT_TRUE(pair.sender.Outcome() != Outcome::Success || whole.size() == 2) << "seed " << seed;
    if (!cut) {
        EXPECT_EQ(pair.sender.Outcome(), Outcome::Success)
            << "seed " << seed << ": " << pair.sender.Reason();
        EXPECT_EQ(pair.receiver.Outcome(), Outcome::Success)
            << "seed " << seed << ": " << pair.receiver.Reason();
    }
    faults += pair.rig.Forth().Faults() + pair.rig.Back().Faults() + (cut ? 1 : 0);
}

} // namespace

TEST(TransferFaults, ZModemSurvivesWhatLinesDo) {
    std::uint64_t faults = 0;
    for (std::uint64_t seed = 1; faults < FaultsWanted(); ++seed) {
        Survive<ZPair>(seed, faults);
    }
}

TEST(TransferFaults, KermitSurvivesWhatLinesDo) {
    std::uint64_t faults = 0;
    for (std::uint64_t seed = 1; faults < FaultsWanted(); ++seed) {
        Survive<KPair>(seed, faults);
    }
}

} // namespace qncomm::transfer::testing

#include "EnginePair.h"
#include "FaultCampaign.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

using ZPair = EnginePair<ZModemSender, ZModemReceiver, ZModemSenderOptions, ZModemReceiverOptions>;
using KPair = EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>;

// What goes wrong is the remainder of the transfer's number; these end the transfer, and the others
// may not.
constexpr std::uint64_t Kinds = 9;
constexpr std::uint64_t Cut = 5;
constexpr std::uint64_t Killed = 6;
constexpr std::uint64_t DiskFull = 7;

LineFaults FaultsOf(std::uint64_t seed) {
    LineFaults faults;
    const double rate = (seed / Kinds) % 2 == 0 ? 1e-3 : 2e-4;
    switch (seed % Kinds) {
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
    case Cut:
        faults.cutAfter = 100 + (seed * 7919) % 60000;
        break;
    case Killed:
    case DiskFull:
        break; // the line is good
    default:
        faults = {rate / 4, rate / 4, rate / 4, rate / 4, 1e-5, 3s, 0, ~0ULL};
        break;
    }
    return faults;
}

// Whatever the line does: no wrong file, no end that never comes, and a sender that says so only
// when it is so.
template <class Pair, class SenderOptions, class ReceiverOptions>
void Survive(std::uint64_t seed, std::uint64_t& faults, const SenderOptions& sending,
             const ReceiverOptions& receiving) {
    const std::string content = RandomBytes(40000 + (seed * 977) % 30000, seed);
    LineSettings line = PacedLine(seed % 3 == 0 ? 11520 : 115200);
    line.faults = FaultsOf(seed);
    Pair pair({{"first.bin", content}, {"second.bin", "x"}}, line, seed, sending, receiving);
    const std::uint64_t kind = seed % Kinds;
    const std::uint64_t place = (seed * 7919) % content.size();
    if (kind == DiskFull) pair.sink.failWriteAt = place;
    pair.rig.onStep = [&](Time) {
        if (kind != Killed || pair.receiver.Progress().bytes < place) return;
        (seed / Kinds % 2 == 0 ? pair.rig.senderDead : pair.rig.receiverDead) = true;
    };
    ASSERT_TRUE(pair.rig.Run(900s)) << "seed " << seed;
    EXPECT_LE(pair.rig.Elapsed() - pair.rig.LastByte(), 60s) << "seed " << seed;
    EXPECT_FALSE(pair.sink.gap);
    const auto& whole = pair.sink.Whole();
    EXPECT_TRUE(whole.empty() || whole[0].content == content) << "seed " << seed;
    EXPECT_TRUE(pair.sender.Outcome() != Outcome::Success || whole.size() == 2) << "seed " << seed;
    const bool mayFail = kind == Cut || kind == Killed || kind == DiskFull;
    if (!mayFail) {
        EXPECT_EQ(pair.sender.Outcome(), Outcome::Success)
            << "seed " << seed << ": " << pair.sender.Reason();
        EXPECT_EQ(pair.receiver.Outcome(), Outcome::Success)
            << "seed " << seed << ": " << pair.receiver.Reason();
    }
    EXPECT_TRUE(kind != DiskFull || whole.empty()) << "seed " << seed;
    faults += pair.rig.Forth().Faults() + pair.rig.Back().Faults() + (mayFail ? 1 : 0);
}

} // namespace

TEST(TransferFaults, ZModemSurvivesWhatLinesDo) {
    std::uint64_t faults = 0;
    for (std::uint64_t seed = FirstSeed(); faults < FaultsWanted(); ++seed) {
        Survive<ZPair>(seed, faults, ZModemSenderOptions{}, ZModemReceiverOptions{});
    }
}

TEST(TransferFaults, KermitSurvivesWhatLinesDo) {
    std::uint64_t faults = 0;
    for (std::uint64_t seed = FirstSeed(); faults < FaultsWanted(); ++seed) {
        Survive<KPair>(seed, faults, KermitOptions{}, KermitOptions{});
    }
}

// It ends at the first fault, so each file has only so many.
TEST(TransferFaults, StreamingKermitSurvivesWhatLinesDo) {
    KermitOptions options;
    options.reliable = true;
    std::uint64_t faults = 0;
    for (std::uint64_t seed = FirstSeed(); faults < FaultsWanted(); ++seed) {
        Survive<KPair>(seed, faults, options, options);
    }
}

} // namespace qncomm::testing

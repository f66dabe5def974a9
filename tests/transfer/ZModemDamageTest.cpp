// What damage costs ZModem, in simulated time: the middle of many transfers and their tail.

#include "EnginePair.h"
#include "FaultCampaign.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

using ZPair = EnginePair<ZModemSender, ZModemReceiver, ZModemSenderOptions, ZModemReceiverOptions>;

constexpr double Rate = 11520;
constexpr std::size_t Size = 65536;

LineSettings Damaged(double flips) {
    LineSettings line = PacedLine(Rate);
    line.faults.flip = flips;
    return line;
}

// As between pseudo-terminals or behind a device server: what these have taken cannot be taken
// back.
LineSettings Deep(LineSettings line) {
    line.buffer = 65536;
    return line;
}

LineSettings InBursts(LineSettings line) {
    line.burst = 300ms;
    return line;
}

// The shares of the line's rate that so many transfers came to, the worst first.
std::vector<double> Shares(const LineSettings& line, std::uint64_t count) {
    const std::string content = RandomBytes(Size, 5);
    std::vector<double> shares;
    for (std::uint64_t seed = FirstSeed(); shares.size() < count; ++seed) {
        ZPair pair({{"random.bin", content}}, line, seed);
        EXPECT_TRUE(pair.rig.Run(900s)) << seed;
        EXPECT_TRUE(pair.Carried(content))
            << seed << ' ' << pair.sender.Reason() << ' ' << pair.receiver.Reason();
        shares.push_back(pair.Share(Size, Rate));
    }
    std::ranges::sort(shares);
    return shares;
}

double Median(const std::vector<double>& sorted) {
    return sorted[sorted.size() / 2];
}

// No transfer, and where more are run no more than one of a thousand, takes so many times as long
// as the one in the middle.
void ExpectAShortTail(const char* name, const LineSettings& line, double times) {
    const std::vector<double> shares = Shares(line, RunsWanted());
    std::cout << "figure: ZModem over " << name << ", one byte in 1,000 damaged, " << shares.size()
              << " transfers: share of the line " << Median(shares) << ", the worst of a hundred "
              << shares[shares.size() / 100] << ", the worst " << shares.front() << '\n';
    EXPECT_GE(shares[(shares.size() - 1) / 1000] * times, Median(shares));
}

} // namespace

TEST(ZModemDamage, OneByteInAThousandLeavesMostOfTheLine) {
    EXPECT_GE(Median(Shares(Damaged(1e-3), 41)), 0.62);
    EXPECT_GE(Median(Shares(Deep(Damaged(1e-3)), 41)), 0.62);
}

TEST(ZModemDamage, OneByteInTenThousandCostsAFewHundredths) {
    EXPECT_GE(Median(Shares(Damaged(1e-4), 41)), 0.80);
    EXPECT_GE(Median(Shares(Deep(Damaged(1e-4)), 41)), 0.79);
}

TEST(ZModemDamage, TheTailIsShortOnALineWithADeepBuffer) {
    ExpectAShortTail("a deep buffer", Deep(Damaged(1e-3)), 2);
}

// A pause that the line makes up for at once tells of a rate that it does not have: a window taken
// from that is sent again for each damage, many times the file in all. What the first of it has
// filled the buffer with has still to drain.
TEST(ZModemDamage, TheTailIsShortOnALineThatCarriesInBursts) {
    ExpectAShortTail("bursts", InBursts(Deep(Damaged(1e-3))), 3);
}

// The receiver takes what follows for content, and the sender's repeats follow as long as it says
// nothing.
TEST(ZModemDamage, TheLastSubpacketsEndIsMissedForAMomentOnly) {
    const std::string content = RandomBytes(600, 5);
    ZPair clean({{"random.bin", content}}, PacedLine(Rate));
    ASSERT_TRUE(clean.rig.Run(60s));
    const std::uint64_t last = clean.rig.Forth().Carried();
    for (std::uint64_t place = last - 70; place < last - 40; ++place) {
        for (std::uint64_t seed = 1; seed <= 8; ++seed) {
            LineSettings line = PacedLine(Rate);
            line.faults.flipAt = place;
            ZPair pair({{"random.bin", content}}, line, seed, {}, {}, PacedLine(Rate));
            ASSERT_TRUE(pair.rig.Run(60s));
            EXPECT_TRUE(pair.Carried(content)) << last - place << ' ' << pair.receiver.Reason();
            EXPECT_LE(pair.rig.Elapsed(), clean.rig.Elapsed() + 2s) << last - place;
        }
    }
}

} // namespace qncomm::testing

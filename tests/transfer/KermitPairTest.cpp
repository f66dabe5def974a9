#include "EnginePair.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

using KPair = EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>;

double ShareOf(const LineSettings& line, const KermitOptions& options, std::size_t size,
               std::uint64_t seed) {
    const std::string content = RandomBytes(size, seed);
    KPair pair({{"random.bin", content}}, line, seed, options, options);
    EXPECT_TRUE(pair.rig.Run(1800s));
    EXPECT_TRUE(pair.Carried(content)) << pair.sender.Reason() << " / " << pair.receiver.Reason();
    return pair.Share(size, line.rate);
}

} // namespace

TEST(KermitPair, CarriesARandomFileNearTheLinesRate) {
    KermitOptions options;
    EXPECT_GT(ShareOf(PacedLine(), options, 1 << 20, 7), 0.87);
    options.prefixing = KermitPrefixing::Least;
    EXPECT_GT(ShareOf(PacedLine(), options, 1 << 20, 7), 0.96);
}

TEST(KermitPair, ALongRoundTripCostsLittle) {
    const KermitOptions options;
    const double clean = ShareOf(PacedLine(), options, 1 << 20, 7);
    LineSettings line = PacedLine();
    line.latency += 25ms;
    EXPECT_GT(ShareOf(line, options, 1 << 20, 7), 0.95 * clean);
}

TEST(KermitPair, KeepsMostOfALineThatDamagesOneByteInTenThousand) {
    LineSettings line = PacedLine();
    line.faults.flip = 1e-4;
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        EXPECT_GT(ShareOf(line, {}, 1 << 18, seed), 0.80);
    }
}

TEST(KermitPair, GetsThroughALineThatDamagesOneByteInAThousand) {
    LineSettings line = PacedLine();
    line.faults.flip = 1e-3;
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        EXPECT_GT(ShareOf(line, {}, 1 << 18, seed), 0.40);
    }
}

TEST(KermitPair, AgreesOnEveryCombinationOfTerms) {
    for (const std::size_t packet : {20U, 90U, 94U, 95U, 1000U, 9000U}) {
        for (const unsigned window : {1U, 8U, 30U}) {
            for (const unsigned check : {1U, 2U, 3U}) {
                KermitOptions options;
                options.packet = packet;
                options.window = window;
                options.check = check;
                options.repeats = window != 8;
                options.attributes = check != 2;
                const std::string content = RandomBytes(3000, 5) + std::string(400, '\0');
                KPair pair({{"a.bin", content}}, PacedLine(), 1, options, {});
                ASSERT_TRUE(pair.rig.Run(100s));
                EXPECT_TRUE(pair.Carried(content)) << packet << ' ' << window << ' ' << check;
                KPair other({{"a.bin", content}}, PacedLine(), 1, {}, options);
                ASSERT_TRUE(other.rig.Run(100s));
                EXPECT_TRUE(other.Carried(content)) << packet << ' ' << window << ' ' << check;
            }
        }
    }
}

TEST(KermitPair, KeepsToThePacketLengthThatTheReceiverAllows) {
    for (const std::size_t packet : {20U, 94U, 500U}) {
        KermitOptions options;
        options.packet = packet;
        KPair pair({{"a.bin", RandomBytes(20000, 5)}}, PacedLine(), 1, {}, options);
        ASSERT_TRUE(pair.rig.Run(100s));
        const std::string& log = pair.rig.Forth().Log();
        for (std::size_t at = 0; at < log.size();) {
            const std::size_t next = std::min(log.find('\x01', at + 1), log.size());
            // Mark, length and end of line are not counted in the length of a short packet.
            EXPECT_TRUE(log[at + 3] != 'D' || next - at <= packet + 3);
            at = next;
        }
    }
}

TEST(KermitPair, SevenBitLinesCarryEightBitFiles) {
    KermitOptions options;
    options.sevenBits = true;
    LineSettings line = PacedLine();
    line.sevenBits = true;
    const std::string content = RandomBytes(20000, 5);
    for (const bool both : {true, false}) {
        // A receiver that knows says so to a sender that does not.
        KermitOptions sending = options;
        KPair pair({{"a.bin", content}}, line, 1, sending, both ? options : KermitOptions{});
        ASSERT_TRUE(pair.rig.Run(100s));
        EXPECT_TRUE(pair.Carried(content));
    }
}

TEST(KermitPair, RunsOfOneByteShrink) {
    const std::string content(100000, '\0');
    KPair pair({{"a.bin", content}}, PacedLine());
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_LT(pair.rig.Forth().Carried(), 10000U);
}

TEST(KermitPair, TextTravelsWithCarriageReturns) {
    const std::string content = "one\ntwo\n\nthree\r\nlast\r";
    KPair pair({{"a.txt", content}}, PacedLine());
    pair.source.text = true;
    ASSERT_TRUE(pair.rig.Run(100s));
    ASSERT_EQ(pair.sink.Whole().size(), 1U);
    EXPECT_EQ(pair.sink.Whole()[0].content, "one\ntwo\n\nthree\nlast\r");
    EXPECT_TRUE(pair.sink.Offered()[0].text);
    EXPECT_NE(pair.rig.Forth().Log().find("one#M\ntwo"), std::string::npos);
}

TEST(KermitPair, AttributesArriveWithTheFile) {
    KPair pair({{"a.bin", "content"}}, PacedLine());
    ASSERT_TRUE(pair.rig.Run(100s));
    ASSERT_EQ(pair.sink.Offered().size(), 1U);
    EXPECT_EQ(pair.sink.Offered()[0].name, "a.bin");
    EXPECT_EQ(pair.sink.Offered()[0].size, 7U);
    EXPECT_EQ(pair.sink.Offered()[0].modified, 1700000000);
    EXPECT_EQ(pair.sink.Offered()[0].mode, 0644U);
}

// Only the sender's last answer is lost.
TEST(KermitPair, AMissingLastWordCostsASecondAndIsSuccess) {
    KPair clean({{"a.bin", "content"}}, PacedLine());
    ASSERT_TRUE(clean.rig.Run(60s));
    LineSettings line = PacedLine();
    line.faults.cutAfter = clean.rig.Forth().Carried(); // more than ever goes back
    LineSettings cut = line;
    cut.faults.cutAfter = clean.rig.Back().Carried() - 1;
    KPair pair({{"a.bin", "content"}}, line, 1, {}, {}, cut);
    ASSERT_TRUE(pair.rig.Run(120s));
    EXPECT_TRUE(pair.Carried("content")) << pair.sender.Reason();
    EXPECT_LE(pair.rig.Farewell(), 1100ms);
}

} // namespace qncomm::testing

#include "EnginePair.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

using ZPair = EnginePair<ZModemSender, ZModemReceiver, ZModemSenderOptions, ZModemReceiverOptions>;

// The most bytes that were ever sent and not yet known to have arrived, while `content` travels.
std::uint64_t MostUnderWay(const LineSettings& line, const std::string& content) {
    ZPair pair({{"a.bin", content}}, line);
    std::uint64_t most = 0;
    pair.rig.onStep = [&](Time) {
        if (pair.receiver.Phase() != Phase::Moving) return;
        const std::uint64_t carried = pair.rig.Forth().Carried();
        most = std::max(most, carried - std::min(carried, pair.sender.Progress().bytes));
    };
    EXPECT_TRUE(pair.rig.Run(600s));
    return most;
}

} // namespace

TEST(ZModemPair, CarriesARandomFileAtTheLinesRate) {
    const std::string content = RandomBytes(1 << 20, 7);
    ZPair pair({{"random.bin", content}}, PacedLine());
    ASSERT_TRUE(pair.rig.Run(600s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_GT(pair.Share(content.size(), 11520), 0.965);
}

TEST(ZModemPair, CarriesTextNearlyWithoutLoss) {
    const std::string content = TextBytes(1 << 20, 7);
    ZPair pair({{"text.txt", content}}, PacedLine());
    ASSERT_TRUE(pair.rig.Run(600s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_GT(pair.Share(content.size(), 11520), 0.993);
}

// As many bytes are here as the sender could leave out, but they are not its file's.
TEST(ZModemPair, WhatIsHereOfAnotherFileTravelsAnew) {
    const std::string content = RandomBytes(40000, 7);
    ZPair pair({{"a.bin", content}}, PacedLine());
    pair.source.resume = true;
    pair.sink.resumeFrom = content.substr(0, 20000);
    pair.sink.resumeFrom[0] = static_cast<char>(~content[0]);
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_TRUE(pair.Carried(content)) << pair.sender.Reason() << pair.receiver.Reason();
    EXPECT_EQ(pair.sink.Offered().size(), 2U);
    EXPECT_FALSE(pair.sink.Offered()[1].fromAnywhere);
}

TEST(ZModemPair, LongSubpacketsWasteLess) {
    const std::string content = RandomBytes(1 << 20, 7);
    ZModemSenderOptions options;
    options.subpacket = 8192;
    ZPair pair({{"random.bin", content}}, PacedLine(), 1, options);
    ASSERT_TRUE(pair.rig.Run(600s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_GT(pair.Share(content.size(), 11520), 0.970);
}

TEST(ZModemPair, FillsALineWithALongRoundTrip) {
    const std::string content = RandomBytes(1 << 19, 7);
    LineSettings line = PacedLine();
    line.latency = 250ms;
    ZPair pair({{"random.bin", content}}, line);
    ASSERT_TRUE(pair.rig.Run(600s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_GT(pair.Share(content.size(), 11520), 0.85);
}

TEST(ZModemPair, PutsLittleMoreUnderWayThanTheLineHolds) {
    LineSettings line = PacedLine();
    line.buffer = 1U << 20U; // a driver that takes everything
    EXPECT_LT(MostUnderWay(line, RandomBytes(1 << 18, 3)), 40000U);
}

TEST(ZModemPair, WorksAtAnySpeed) {
    for (const double rate : {30.0, 240.0, 1e6}) {
        const std::string content = RandomBytes(rate < 100 ? 1000 : 10000, 5);
        ZPair pair({{"a.bin", content}}, PacedLine(rate));
        ASSERT_TRUE(pair.rig.Run(600s)) << rate;
        EXPECT_TRUE(pair.Carried(content))
            << rate << pair.sender.Reason() << pair.receiver.Reason();
    }
}

TEST(ZModemPair, AsksAReceiverWithABufferNotToOverflowIt) {
    const std::string content = RandomBytes(50000, 5);
    ZModemReceiverOptions options;
    options.buffer = 2048;
    ZPair pair({{"a.bin", content}}, PacedLine(), 1, {}, options);
    ASSERT_TRUE(pair.rig.Run(600s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_EQ(pair.sender.Progress().repairs, 0U);
}

TEST(ZModemPair, EscapesEveryControlCharacterWhenEitherSideSaysSo) {
    for (const bool sending : {false, true}) {
        const std::string content = RandomBytes(5000, 5);
        ZModemSenderOptions options;
        options.escapeControls = sending;
        ZModemReceiverOptions receiving;
        receiving.escapeControls = !sending;
        ZPair pair({{"a.bin", content}}, PacedLine(), 1, options, receiving);
        ASSERT_TRUE(pair.rig.Run(60s));
        EXPECT_TRUE(pair.Carried(content));
        EXPECT_EQ(pair.rig.Forth().Log().find_first_of(std::string_view("\x01\x02\x03\x00\x1B", 5)),
                  std::string::npos);
    }
}

TEST(ZModemPair, UsesShortSumsWhenTheReceiverKnowsNoOthers) {
    const std::string content = RandomBytes(5000, 5);
    ZModemReceiverOptions options;
    options.crc32 = false;
    ZPair pair({{"a.bin", content}}, PacedLine(), 1, {}, options);
    ASSERT_TRUE(pair.rig.Run(60s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_EQ(pair.rig.Forth().Log().find("*\x18"
                                          "C"),
              std::string::npos);
}

TEST(ZModemPair, SendsTheAttentionSequenceBeforeItAsksAgain) {
    const std::string content = RandomBytes(50000, 5);
    ZModemSenderOptions options;
    options.sAttention = "\x03"
                         "ATTN";
    LineSettings line = PacedLine();
    line.faults.flip = 2e-4;
    ZPair pair({{"a.bin", content}}, line, 4, options);
    ASSERT_TRUE(pair.rig.Run(200s));
    EXPECT_TRUE(pair.Carried(content));
    EXPECT_GT(pair.receiver.Progress().repairs, 0U);
    EXPECT_NE(pair.rig.Back().Log().find("ATTN**\x18"), std::string::npos);
}

// The line goes dead one way, so many bytes before the last one of a clean session.
TEST(ZModemPair, AMissingLastWordCostsASecondAndIsSuccess) {
    ZPair clean({{"a.bin", "content"}}, PacedLine());
    ASSERT_TRUE(clean.rig.Run(60s));
    for (const bool forth : {true, false}) {
        // Forth: the farewell and "OO"; back: the answer to the farewell.
        const std::uint64_t last = forth ? 22 : 20;
        for (std::uint64_t missing = 1; missing <= last; ++missing) {
            LineSettings cut = PacedLine();
            cut.faults.cutAfter =
                (forth ? clean.rig.Forth() : clean.rig.Back()).Carried() - missing;
            ZPair pair({{"a.bin", "content"}}, forth ? cut : PacedLine(), 1, {}, {},
                       forth ? PacedLine() : cut);
            ASSERT_TRUE(pair.rig.Run(120s));
            EXPECT_TRUE(pair.Carried("content"))
                << missing << pair.receiver.Reason() << pair.sender.Reason();
            EXPECT_LE(pair.rig.Elapsed(), clean.rig.Elapsed() + 1050ms) << missing;
        }
    }
}

TEST(ZModemPair, SumsUpAFileWhenTheReceiverAsks) {
    ZModemSender sender;
    MemorySource source(std::vector<MemoryFile>{{"a.bin", "123456789"}});
    sender.Start(1s);
    sender.Sent(ServedOutput(sender, &source, nullptr, 1s).size(), 1s);
    sender.Receive("**\x18"
                   "B0100000023be50\r\n\x11",
                   1s);
    sender.Sent(ServedOutput(sender, &source, nullptr, 1s).size(), 1s);
    sender.Receive("**\x18"
                   "B0d00000000217a\r\n",
                   1s);
    std::string said(ServedOutput(sender, &source, nullptr, 1s));
    EXPECT_NE(said.find("**\x18"
                        "B0d2639f4cb"),
              std::string::npos)
        << said;
}

} // namespace qncomm::testing

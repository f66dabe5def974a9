#include "EnginePair.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

const std::string Content = RandomBytes(30000, 21);

} // namespace

// What holds for both protocols.
template <class Pair>
class Behaviour : public ::testing::Test {};

using Pairs = ::testing::Types<
    EnginePair<ZModemSender, ZModemReceiver, ZModemSenderOptions, ZModemReceiverOptions>,
    EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>>;
TYPED_TEST_SUITE(Behaviour, Pairs);

TYPED_TEST(Behaviour, CarriesABatchWithEmptyFilesInIt) {
    const std::vector<MemoryFile> files = {
        {"a.bin", Content}, {"empty", ""}, {"a name", "x"}, {"last", Content}};
    TypeParam pair(files, PacedLine(115200));
    ASSERT_TRUE(pair.rig.Run(100s));
    ASSERT_EQ(pair.sink.Whole().size(), files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_EQ(pair.sink.Whole()[i].name, files[i].name);
        EXPECT_TRUE(pair.sink.Whole()[i].content == files[i].content);
    }
    EXPECT_EQ(pair.sender.Progress().files, 4U);
    EXPECT_EQ(pair.receiver.Progress().files, 4U);
    EXPECT_EQ(pair.source.Closed(), std::vector<bool>(4, true));
}

TYPED_TEST(Behaviour, AnEmptyBatchIsASuccess) {
    TypeParam pair({}, PacedLine());
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Success);
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Success);
    EXPECT_TRUE(pair.sink.Offered().empty());
}

TYPED_TEST(Behaviour, WorksWithPiecesOfAnySize) {
    for (std::size_t size = 1; size <= 40; ++size) {
        LineSettings line;
        line.buffer = size;
        const std::string content = RandomBytes(700, size);
        TypeParam pair({{"a.bin", content}}, line);
        ASSERT_TRUE(pair.rig.Run(100s)) << size;
        EXPECT_TRUE(pair.Carried(content)) << size;
    }
}

// 9600 baud behind a pseudo-terminal or a device server: what these have taken cannot be taken
// back.
TYPED_TEST(Behaviour, ACancelWaitsBehindLittleOfASlowLineWithADeepBuffer) {
    for (const Time after : {2s, 5s, 15s, 30s}) {
        LineSettings line = PacedLine(960);
        line.buffer = 18000;
        TypeParam pair({{"a.bin", RandomBytes(1 << 20, 3)}}, line);
        std::optional<Time> start;
        Time cancelled{0};
        pair.rig.onStep = [&](Time now) {
            if (!start) start = now;
            if (cancelled != Time{0} || now - *start < after) return;
            cancelled = now;
            pair.sender.Cancel(now);
        };
        ASSERT_TRUE(pair.rig.Run(200s));
        EXPECT_EQ(pair.receiver.Outcome(), Outcome::CancelledThere);
        EXPECT_LT(pair.rig.Elapsed() - after, 4s);
    }
}

TYPED_TEST(Behaviour, ProgressRisesToTheSizeOfTheFile) {
    TypeParam pair({{"a.bin", Content}}, PacedLine());
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
    pair.rig.onStep = [&](Time) {
        EXPECT_GE(pair.sender.Progress().bytes, sent);
        EXPECT_GE(pair.receiver.Progress().bytes, received);
        sent = pair.sender.Progress().bytes;
        received = pair.receiver.Progress().bytes;
        EXPECT_LE(sent, received) << "the sender knows of nothing that has not arrived";
    };
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(sent, Content.size());
    EXPECT_EQ(received, Content.size());
    EXPECT_EQ(pair.receiver.Progress().size, Content.size());
    EXPECT_EQ(pair.sender.Progress().repairs, 0U);
    EXPECT_EQ(pair.receiver.Progress().repairs, 0U);
}

TYPED_TEST(Behaviour, PhasesComeInTheirOrder) {
    TypeParam pair({{"a.bin", Content}}, PacedLine());
    EXPECT_EQ(pair.sender.Phase(), Phase::Idle);
    std::vector<Phase> phases;
    pair.rig.onStep = [&](Time) {
        if (phases.empty() || phases.back() != pair.receiver.Phase())
            phases.push_back(pair.receiver.Phase());
    };
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(phases, (std::vector<Phase>{Phase::Starting, Phase::Opening, Phase::Moving,
                                          Phase::Closing, Phase::Over}));
}

TYPED_TEST(Behaviour, ACancelHereStopsBothEndsSoon) {
    for (const bool bySender : {true, false}) {
        TypeParam pair({{"a.bin", Content}}, PacedLine());
        Time cancelled{0};
        Time over{0};
        pair.rig.onStep = [&](Time now) {
            TransferEngine& engine =
                bySender ? static_cast<TransferEngine&>(pair.sender) : pair.receiver;
            if (pair.receiver.Progress().bytes > 9000 && cancelled == Time{0}) {
                engine.Cancel(now);
                cancelled = now;
            }
            if (pair.sender.IsOver() && pair.receiver.IsOver() && over == Time{0}) over = now;
        };
        ASSERT_TRUE(pair.rig.Run(100s));
        EXPECT_EQ(pair.sender.Outcome(),
                  bySender ? Outcome::CancelledHere : Outcome::CancelledThere);
        EXPECT_EQ(pair.receiver.Outcome(),
                  bySender ? Outcome::CancelledThere : Outcome::CancelledHere);
        EXPECT_LE(over - cancelled, 1s);
        EXPECT_TRUE(pair.sink.Whole().empty());
        EXPECT_EQ(pair.sink.Partial().size(), 1U);
        EXPECT_EQ(pair.source.Closed(), std::vector<bool>{false});
        EXPECT_FALSE(pair.sender.Reason().empty());
    }
}

TYPED_TEST(Behaviour, AFileThatIsNotWantedIsLeftOut) {
    TypeParam pair({{"unwanted", Content}, {"wanted", "x"}}, PacedLine());
    pair.sink.skipName = "unwanted";
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Success);
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Success);
    ASSERT_EQ(pair.sink.Whole().size(), 1U);
    EXPECT_EQ(pair.sink.Whole()[0].name, "wanted");
    EXPECT_EQ(pair.sender.Progress().skipped, 1U);
    EXPECT_EQ(pair.receiver.Progress().skipped, 1U);
    EXPECT_EQ(pair.source.Closed(), (std::vector<bool>{false, true}));
}

TYPED_TEST(Behaviour, AnEarlierTryIsContinued) {
    TypeParam pair({{"a.bin", Content}}, PacedLine());
    pair.source.resume = true;
    pair.sink.resumeFrom = Content.substr(0, 20000);
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_TRUE(pair.Carried(Content)) << pair.sender.Reason() << pair.receiver.Reason();
    EXPECT_TRUE(pair.sink.Offered()[0].resume);
    EXPECT_LT(pair.rig.Forth().Carried(), 13000U);
}

TYPED_TEST(Behaviour, AFullDiskFailsBothEnds) {
    TypeParam pair({{"a.bin", Content}}, PacedLine());
    pair.sink.failWriteAt = 10000;
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Failed);
    EXPECT_EQ(pair.receiver.Reason(), "the disk is full");
    EXPECT_EQ(pair.sender.Outcome(), Outcome::CancelledThere);
    EXPECT_TRUE(pair.sink.Whole().empty());
    EXPECT_EQ(pair.sink.Partial().size(), 1U);
}

TYPED_TEST(Behaviour, AFileThatCannotBeClosedIsNotAcknowledged) {
    TypeParam pair({{"a.bin", Content}}, PacedLine());
    pair.sink.failClose = true;
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Failed);
    EXPECT_EQ(pair.receiver.Reason(), "the file cannot be renamed");
    EXPECT_EQ(pair.sender.Outcome(), Outcome::CancelledThere);
    EXPECT_EQ(pair.sender.Progress().files, 0U);
}

TYPED_TEST(Behaviour, AFileThatCannotBeReadFailsBothEnds) {
    TypeParam pair({{"a.bin", std::string(200000, 'x')}}, PacedLine(115200));
    pair.source.failReadAt = 100000;
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Failed);
    EXPECT_EQ(pair.sender.Reason(), "the disk cannot be read");
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::CancelledThere);
    EXPECT_TRUE(pair.sink.Whole().empty());
}

TYPED_TEST(Behaviour, NobodyThereIsSaidWithinAMinute) {
    LineSettings line = PacedLine();
    line.faults.cutAfter = 0;
    TypeParam pair({{"a.bin", Content}}, line);
    ASSERT_TRUE(pair.rig.Run(60s));
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Failed);
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Failed);
    EXPECT_NE(pair.sender.Reason().find("answered"), std::string::npos);
}

// As when flow control stops it for good: nothing that the engine says is ever taken.
TYPED_TEST(Behaviour, ALineThatTakesNothingHoldsNoEnd) {
    LineSettings line = PacedLine();
    line.buffer = 0;
    TypeParam pair({{"a.bin", Content}}, line);
    ASSERT_TRUE(pair.rig.Run(61s));
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Failed);
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Failed);
    TypeParam cancelled({{"a.bin", Content}}, line);
    cancelled.rig.onStep = [&](Time now) {
        cancelled.sender.Cancel(now);
        cancelled.receiver.Cancel(now);
    };
    ASSERT_TRUE(cancelled.rig.Run(11s));
    EXPECT_EQ(cancelled.sender.Outcome(), Outcome::CancelledHere);
}

TYPED_TEST(Behaviour, ALineThatIsCutIsSaidWithinAMinute) {
    LineSettings line = PacedLine();
    line.faults.cutAfter = 20000;
    TypeParam pair({{"a.bin", Content}}, line);
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_LE(pair.rig.Elapsed() - pair.rig.LastByte(), 60s);
    EXPECT_NE(pair.sender.Outcome(), Outcome::Success);
    EXPECT_NE(pair.receiver.Outcome(), Outcome::Success);
    EXPECT_EQ(pair.sink.Partial().size(), 1U);
}

TYPED_TEST(Behaviour, MemoryDoesNotGrowWithTheFile) {
    // What is asked for at once says what is held at once: more than a file of this size it never
    // is.
    TypeParam pair({{"a.bin", RandomBytes(1 << 20, 3)}}, PacedLine(1e6));
    std::size_t most = 0;
    pair.rig.onStep = [&](Time now) { most = std::max(most, pair.sender.Output(now).size()); };
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_LT(most, 65536U);
}

} // namespace qncomm::testing

#include "EnginePair.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

using KPair = EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>;

KermitOptions Reliable() {
    KermitOptions options;
    options.reliable = true;
    return options;
}

std::size_t Count(const std::string& log, std::string_view what) {
    std::size_t count = 0;
    for (auto at = log.find(what); at != std::string::npos; at = log.find(what, at + 1))
        ++count;
    return count;
}

// Each packet's mark, of all that was said on the way back.
std::size_t Answers(const KPair& pair) {
    return Count(pair.rig.Back().Log(), "\x01");
}

// A line that damages one byte, the one at `place`, and is good otherwise.
LineSettings DamagedAt(std::uint64_t place, double rate) {
    LineSettings line = PacedLine(rate);
    line.faults.flipAt = place;
    return line;
}

const std::string Content = RandomBytes(60000, 4);

} // namespace

TEST(KermitStreaming, DataIsNotAcknowledgedWhenBothSidesSayThatTheLineIsReliable) {
    KPair pair({{"a.bin", Content}, {"b.bin", Content}}, PacedLine(115200), 1, Reliable(),
               Reliable());
    ASSERT_TRUE(pair.rig.Run(100s));
    ASSERT_EQ(pair.sink.Whole().size(), 2U);
    EXPECT_TRUE(pair.sink.Whole()[1].content == Content);
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Success);
    EXPECT_EQ(Answers(pair), 8U); // terms, twice name, attributes and end, and the end of the batch
    EXPECT_EQ(pair.sender.Progress().repairs, 0U);
}

TEST(KermitStreaming, OneSideAloneDoesNotStream) {
    for (const bool sends : {true, false}) {
        KPair pair({{"a.bin", Content}}, PacedLine(115200), 1, sends ? Reliable() : KermitOptions{},
                   sends ? KermitOptions{} : Reliable());
        ASSERT_TRUE(pair.rig.Run(100s));
        EXPECT_TRUE(pair.Carried(Content));
        EXPECT_GT(Answers(pair), 10U);
    }
}

TEST(KermitStreaming, ARoundTripOfASecondCostsNothingInMidFile) {
    LineSettings line = PacedLine(115200);
    line.latency = 500ms;
    const std::string content = RandomBytes(1 << 20, 9);
    KPair pair({{"a.bin", content}}, line, 1, Reliable(), Reliable());
    ASSERT_TRUE(pair.rig.Run(100s));
    EXPECT_TRUE(pair.Carried(content));
    // Six round trips are the session's, the rest is the line's.
    const double rest = static_cast<double>((pair.rig.Elapsed() - 6s).count()) * 1e-6;
    EXPECT_LT(rest, 1.15 * static_cast<double>(content.size()) / line.rate);
}

// Wherever the one damaged byte is: the file arrives, is offered once, and does not start anew.
TEST(KermitStreaming, TheFirstDamageEndsItAndTheFileGoesOn) {
    const std::string content = Content.substr(0, 30000);
    for (std::uint64_t place = 1; place < 34000; place += place < 200 || place > 33000 ? 1 : 97) {
        KPair pair({{"a.bin", content}}, DamagedAt(place, 1e6), 1, Reliable(), Reliable(),
                   PacedLine(1e6));
        ASSERT_TRUE(pair.rig.Run(200s)) << place;
        EXPECT_TRUE(pair.Carried(content)) << place << pair.sender.Reason();
        EXPECT_EQ(pair.sink.Offered().size(), 1U) << place;
        EXPECT_EQ(pair.source.Closed(), std::vector<bool>{true}) << place;
    }
}

TEST(KermitStreaming, OnlyTheRestTravelsAgainAndInWindows) {
    KPair pair({{"a.bin", Content}, {"b.bin", Content}}, DamagedAt(40000, 1e5), 1, Reliable(),
               Reliable(), PacedLine(1e5));
    ASSERT_TRUE(pair.rig.Run(200s));
    ASSERT_EQ(pair.sink.Whole().size(), 2U);
    EXPECT_TRUE(pair.sink.Whole()[0].content == Content);
    EXPECT_TRUE(pair.sink.Whole()[1].content == Content);
    EXPECT_EQ(pair.receiver.Progress().repairs, 1U);
    EXPECT_GT(Answers(pair), 30U);
    // Both files once and what stood in the line when the damage was seen.
    EXPECT_LT(pair.rig.Forth().Carried(), 3 * Content.size());
}

// A text's offsets differ on the two sides, and one who knows no attributes cannot be asked for the
// rest: the file travels again and what is here already is passed over.
TEST(KermitStreaming, WhatIsHereIsPassedOverWhereTheRestCannotBeAskedFor) {
    const std::string text = TextBytes(30000, 3);
    for (const bool attributes : {true, false}) {
        KermitOptions options = Reliable();
        options.attributes = attributes;
        KPair pair({{"a.txt", text}}, DamagedAt(20000, 1e6), 1, options, options, PacedLine(1e6));
        pair.source.text = attributes;
        ASSERT_TRUE(pair.rig.Run(200s));
        EXPECT_TRUE(pair.Carried(text)) << pair.sender.Reason();
        EXPECT_EQ(pair.sink.Offered().size(), 1U);
        EXPECT_EQ(pair.receiver.Progress().repairs, 1U);
    }
}

TEST(KermitStreaming, AFileThatIsNotWantedIsLeftOut) {
    for (const std::size_t size : {100U, 60000U}) {
        KPair pair({{"unwanted", Content.substr(0, size)}, {"wanted", "x"}}, PacedLine(), 1,
                   Reliable(), Reliable());
        pair.sink.skipName = "unwanted";
        ASSERT_TRUE(pair.rig.Run(100s));
        ASSERT_EQ(pair.sink.Whole().size(), 1U);
        EXPECT_EQ(pair.sender.Progress().skipped, 1U);
        EXPECT_EQ(pair.source.Closed(), (std::vector<bool>{false, true}));
        EXPECT_LT(pair.rig.Forth().Carried(), 50000U);
    }
}

TEST(KermitStreaming, EitherSideCanCancel) {
    for (const bool bySender : {true, false}) {
        KPair pair({{"a.bin", Content}}, PacedLine(), 1, Reliable(), Reliable());
        TransferEngine& engine = bySender ? static_cast<TransferEngine&>(pair.sender)
                                          : static_cast<TransferEngine&>(pair.receiver);
        pair.rig.onStep = [&](Time now) {
            if (pair.receiver.Progress().bytes > 9000) engine.Cancel(now);
        };
        ASSERT_TRUE(pair.rig.Run(100s));
        EXPECT_EQ(engine.Outcome(), Outcome::CancelledHere);
        EXPECT_EQ(bySender ? pair.receiver.Outcome() : pair.sender.Outcome(),
                  Outcome::CancelledThere);
        EXPECT_TRUE(pair.sink.Whole().empty());
    }
}

// Minutes in which nothing has to be said: a slow line, and files that take their time.
TEST(KermitStreaming, ALongStreamIsNotTakenForSilence) {
    KPair pair({{"a.bin", Content}}, PacedLine(300), 1, Reliable(), Reliable());
    ASSERT_TRUE(pair.rig.Run(1000s));
    EXPECT_TRUE(pair.Carried(Content)) << pair.sender.Reason() << pair.receiver.Reason();
    EXPECT_EQ(pair.receiver.Progress().repairs, 0U);
}

} // namespace qncomm::testing

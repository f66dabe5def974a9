#include "endpoints/TracePlayer.h"

#include <gtest/gtest.h>

namespace qnsim {
namespace {

using qncomm::TraceKind;
using qncomm::TraceRecord;

TraceRecord Sent(int line, std::int64_t ms, std::string bytes) {
    return {line, ms, TraceKind::Sent, std::move(bytes), 0};
}
TraceRecord Received(int line, std::int64_t ms, std::string bytes) {
    return {line, ms, TraceKind::Received, std::move(bytes), 0};
}
TraceRecord Event(int line, std::int64_t ms) {
    return {line, ms, TraceKind::Event, "open", 0};
}

const std::vector<TraceRecord> Session{Event(1, 0),
                                       Received(2, 10, "hello"),
                                       Sent(3, 20, "ASK\r\n"),
                                       Received(4, 25, "ASK\r\n"),
                                       Received(5, 45, "Ok\r\n"),
                                       Event(6, 50),
                                       Sent(7, 60, "BYE"),
                                       Received(8, 70, "end")};

TEST(TracePlayer, AnswersAsRecordedHoweverTheHostCutsItsBytes) {
    const std::string host = "ASK\r\nBYE";
    for (std::size_t cut = 0; cut <= host.size(); ++cut) {
        TracePlayer player(Session, false);
        std::string got = player.ToHost(0);
        EXPECT_EQ(got, "hello");
        player.FromHost(std::string_view(host).substr(0, cut), 1);
        got += player.ToHost(1);
        EXPECT_EQ(got, cut < 5   ? "hello"
                       : cut < 8 ? "helloASK\r\nOk\r\n"
                                 : "helloASK\r\nOk\r\nend");
        player.FromHost(std::string_view(host).substr(cut), 2);
        got += player.ToHost(2);
        EXPECT_EQ(got, "helloASK\r\nOk\r\nend") << cut;
        EXPECT_TRUE(player.Finished());
        EXPECT_EQ(player.Mismatch(), "");
        EXPECT_EQ(player.Missing(), "");
    }
}

TEST(TracePlayer, ComesAfterTheRecordedDelays) {
    TracePlayer player(Session, true);
    EXPECT_EQ(player.ToHost(1'000'000), "hello");
    player.FromHost("ASK\r\n", 2'000'000);
    EXPECT_EQ(player.ToHost(2'004'999), "");
    EXPECT_EQ(player.NextDue(), 2'005'000);
    EXPECT_EQ(player.ToHost(2'005'000), "ASK\r\n");
    EXPECT_EQ(player.NextDue(), 2'025'000);
    EXPECT_EQ(player.ToHost(2'025'000), "Ok\r\n");
    EXPECT_FALSE(player.NextDue().has_value());
}

TEST(TracePlayer, HostThatDoesNotWaitIsNotHeldUp) {
    TracePlayer player(Session, true);
    player.FromHost("ASK\r\nBYE", 0);
    EXPECT_EQ(player.ToHost(0), "helloASK\r\nOk\r\n");
    EXPECT_EQ(player.ToHost(10'000), "end");
}

TEST(TracePlayer, LineThatWasLostIsLostAgainAfterWhatCameBefore) {
    const TraceRecord loss{4, 500, TraceKind::Event, "lost: Port COM1: it went away.", 0};
    const std::vector<TraceRecord> session{Event(1, 0), Sent(2, 100, "ASK"),
                                           Received(3, 200, "half"), loss, Event(5, 510)};
    for (const bool delays : {false, true}) {
        TracePlayer player(session, delays);
        EXPECT_FALSE(player.Lost(0));
        player.FromHost("ASK", 1'000'000);
        EXPECT_EQ(player.ToHost(1'100'000), "half");
        const Micros due = delays ? 1'400'000 : 1'100'000;
        EXPECT_EQ(player.NextDue(), due);
        EXPECT_FALSE(player.Lost(due - 1));
        player.FromHost("said to nobody", due - 1);
        EXPECT_EQ(player.Mismatch(), "");
        EXPECT_TRUE(player.Lost(due));
        EXPECT_EQ(player.Missing(), "");
    }
}

TEST(TracePlayer, MismatchNamesLinePlaceAndBothSides) {
    TracePlayer player(Session, false);
    player.FromHost("AS", 0);
    player.FromHost("X\x01", 0);
    EXPECT_EQ(player.Mismatch(), R"(line 3, byte 3: expected "K\r\n", got "X\x01")");
    EXPECT_EQ(player.ToHost(0), "hello");
    EXPECT_FALSE(player.Finished());
}

TEST(TracePlayer, HostThatGoesOnBeyondTheEndIsAMismatch) {
    TracePlayer player(Session, false);
    player.FromHost("ASK\r\nBYE!", 0);
    EXPECT_EQ(player.Mismatch(), "the trace ends at line 8, the host went on with \"!\"");
}

TEST(TracePlayer, HostThatStopsEarlyLeavesWhatIsMissing) {
    TracePlayer player(Session, false);
    player.FromHost("ASK\r\nB", 0);
    EXPECT_EQ(player.Missing(), "line 7: expected \"YE\", got nothing more");
}

TEST(TracePlayer, RedactedBytesStandForAnyOfTheHosts) {
    TracePlayer player({{1, 0, TraceKind::Sent, "", 4},
                        Sent(2, 0, "\r"),
                        {3, 0, TraceKind::Received, "", 3},
                        Received(4, 0, "Ok")},
                       false);
    player.FromHost("wha", 0);
    player.FromHost("t\r", 0);
    EXPECT_EQ(player.ToHost(0), "...Ok");
    EXPECT_TRUE(player.Finished());
}

} // namespace
} // namespace qnsim

// The two sides of a remote serial port, written apart from each other, in one conversation.
#include "ComPortClient.h"
#include "endpoints/ComPortServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace qncomm::testing {
namespace {

using qncomm::ComPortClient;
using qncomm::LineSettings;
using qnsim::ComPortServer;
using qnsim::HostAction;

/// Carries the talk in pieces of one size until both are silent.
class Conversation {
  public:
    explicit Conversation(std::size_t piece) : mPiece(piece) {}

    void Run() {
        while (!client.Output().empty() || !server.Output().empty()) {
            const std::string up(client.Output().substr(0, mPiece));
            client.Sent(up.size());
            for (const HostAction& action : server.Receive(up))
                if (action.kind == HostAction::Kind::Bytes) toPrinter += action.text;
            const std::string down = server.Output().substr(0, mPiece);
            server.Output().erase(0, down.size());
            client.Receive(down, toHost);
        }
    }

    ComPortClient client;
    ComPortServer server;
    std::string toPrinter;
    std::string toHost;

  private:
    std::size_t mPiece;
};

TEST(BothSides, AgreeOnEachLineFormatOfTheSearchInPiecesOfAnySize) {
    constexpr std::array<LineSettings, 4> formats{{{0, 'm', 8, 2, false, false},
                                                   {0, 'n', 8, 2, false, false},
                                                   {0, 'n', 7, 2, false, false},
                                                   {0, 'n', 7, 1, false, false}}};
    for (const std::size_t piece : {1U, 2U, 3U, 7U, 4096U}) {
        for (const int baud : {9600, 19200, 57600, 115200, 38400, 4800, 2400}) {
            for (LineSettings settings : formats) {
                settings.baud = baud;
                Conversation talk(piece);
                talk.client.Offer();
                talk.Run();
                ASSERT_TRUE(talk.client.Agreed());
                talk.client.Configure(settings);
                talk.client.HoldLines(true, true);
                talk.Run();
                EXPECT_TRUE(talk.client.Settled());
                EXPECT_TRUE(talk.client.Refusal().Ok()) << talk.client.Refusal().text;
                EXPECT_EQ(talk.server.Format().baud, settings.baud);
                EXPECT_EQ(talk.server.Format().parity, settings.parity);
                EXPECT_EQ(talk.server.Format().dataBits, settings.dataBits);
                EXPECT_EQ(talk.server.Format().stopBits, settings.stopBits);
            }
        }
    }
}

TEST(BothSides, CarryAllBytesBothWaysAndKeepThemFromBeforeAPurgeApart) {
    std::string all;
    for (int value = 0; value < 256; ++value)
        all.append(3, static_cast<char>(value));
    for (const std::size_t piece : {1U, 5U, 4096U}) {
        Conversation talk(piece);
        talk.client.Offer();
        talk.Run();
        talk.client.Send(all);
        talk.server.Send(all);
        talk.Run();
        EXPECT_EQ(talk.toPrinter, all);
        EXPECT_EQ(talk.toHost, all);
        talk.server.Send("stale");
        talk.client.PurgeReceived();
        talk.Run();
        talk.server.Send("fresh");
        talk.Run();
        EXPECT_EQ(talk.toHost, all + "fresh");
    }
}

TEST(BothSides, ModemLinesOfThePrinterReachTheClient) {
    Conversation talk(4096);
    talk.client.Offer();
    talk.client.AskForStates();
    talk.Run();
    EXPECT_EQ(talk.client.Dsr(), true);
    talk.server.ShowLines(false, true);
    talk.Run();
    EXPECT_EQ(talk.client.Dsr(), false);
    EXPECT_TRUE(talk.client.Settled());
}

} // namespace
} // namespace qncomm::testing

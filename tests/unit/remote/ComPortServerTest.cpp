// The virtual printer's remote serial port, byte for byte.
#include "endpoints/ComPortServer.h"
#include "TelnetBytes.h"

#include <gtest/gtest.h>

#include <utility>

namespace qncomm::testing {
namespace {

using qnsim::ComPortServer;
using qnsim::HostAction;

const std::string AllAsked = Option(Will, 0) + Option(Do, 0) + Option(Will, 44);

/// The actions as words, the bytes of neighbouring pieces put together.
std::string Words(const std::vector<HostAction>& actions) {
    std::string words;
    bool bytesBefore = false;
    for (const HostAction& action : actions) {
        const bool bytes = action.kind == HostAction::Kind::Bytes;
        if (!words.empty() && !(bytes && bytesBefore)) words += '|';
        bytesBefore = bytes;
        switch (action.kind) {
        case HostAction::Kind::Bytes:
            words += action.text;
            break;
        case HostAction::Kind::Format:
            words += std::to_string(*action.format.baud) + "," + *action.format.parity + ","
                     + std::to_string(*action.format.dataBits) + ","
                     + std::to_string(*action.format.stopBits);
            break;
        case HostAction::Kind::Lines:
            words +=
                std::string("dtr=") + (action.dtr ? "1" : "0") + " rts=" + (action.rts ? "1" : "0");
            break;
        case HostAction::Kind::Break:
            words += "break";
            break;
        case HostAction::Kind::DropSent:
            words += "drop sent";
            break;
        case HostAction::Kind::DropReceived:
            words += "drop received";
            break;
        }
    }
    return words;
}

struct Server {
    /// What the server answers to these bytes; what the host did by them is kept in did.
    std::string Hear(std::string_view bytes) {
        did = Words(port.Receive(bytes));
        return std::exchange(port.Output(), {});
    }
    Server& Agree() {
        Hear(AllAsked);
        return *this;
    }

    ComPortServer port;
    std::string did;
};

TEST(ComPortServer, TakesTheOptionsThatItKnowsAndSaysSoOnce) {
    Server server;
    EXPECT_EQ(server.Hear(AllAsked + Option(Do, 3) + Option(Will, 3)),
              Option(Do, 0) + Option(Will, 0) + Option(Do, 44) + Command(107, {0x30})
                  + Option(Will, 3) + Option(Do, 3));
    EXPECT_EQ(server.Hear(AllAsked), "");
    EXPECT_EQ(server.Hear(Option(Do, 1)), Option(Will, 1)) << "the printer does echo";
    EXPECT_EQ(server.Hear(Option(Will, 1)), Option(Dont, 1));
    EXPECT_EQ(server.Hear(Option(Do, 24) + Option(Will, 31)), Option(Wont, 24) + Option(Dont, 31));
    EXPECT_EQ(server.Hear(Option(Dont, 24) + Option(Wont, 31)), "");
    EXPECT_EQ(server.Hear(Option(Wont, 0)), Option(Dont, 0));
}

TEST(ComPortServer, AnswersEveryRequestWithWhatIsInForce) {
    const std::pair<std::string, std::string> answers[] = {
        {Command(1, {0, 0, 225, 0}), Command(101, {0, 0, 225, 0})},
        {Command(1, {0, 0, 1, 1}), Command(101, {0, 0, 225, 0})}, // no such rate
        {Command(1, {0, 0, 0, 0}), Command(101, {0, 0, 225, 0})}, // a question
        {Command(1, {9}), Command(101, {0, 0, 225, 0})},
        {Command(2, {7}), Command(102, {7})},
        {Command(2, {5}), Command(102, {7})},
        {Command(2, {0}), Command(102, {7})},
        {Command(3, {4}), Command(103, {4})},
        {Command(3, {6}), Command(103, {4})},
        {Command(3, {0}), Command(103, {4})},
        {Command(4, {2}), Command(104, {2})},
        {Command(4, {3}), Command(104, {2})},
        {Command(5, {0}), Command(105, {1})},
        {Command(5, {3}), Command(105, {3})},
        {Command(5, {13}), Command(105, {16})}, // both directions were meant
        {Command(5, {15}), Command(105, {15})},
        {Command(5, {0}), Command(105, {3})},
        {Command(5, {19}), Command(105, {3})},
        {Command(5, {4}), Command(105, {6})},
        {Command(5, {5}), Command(105, {5})},
        {Command(5, {6}), Command(105, {6})},
        {Command(5, {7}), Command(105, {8})},
        {Command(5, {9}), Command(105, {9})},
        {Command(5, {10}), Command(105, {11})},
        {Command(5, {12}), Command(105, {12})},
        {Command(10, {255, 255}), Command(110, {255, 255})},
        {Command(11, {0x20}), Command(111, {0x20}) + Command(107, {0x20})},
        {Command(12, {3}), Command(112, {3})},
        {Command(0, ""), Command(100, "qnsim virtual printer")},
    };
    Server server;
    server.Agree();
    for (const auto& [request, answer] : answers)
        EXPECT_EQ(server.Hear(request), answer) << ::testing::PrintToString(request);
}

TEST(ComPortServer, TellsWhatTheHostDidInItsOrder) {
    Server server;
    server.Agree();
    server.Hear("one" + Command(1, {0, 0, 75, 0}) + Command(3, {3}) + "two" + Command(5, {5})
                + Command(5, {5}) + Command(5, {12}) + Command(12, {2}) + Command(12, {1}) + "three"
                + Bytes({255, 243}));
    EXPECT_EQ(server.did, "one|19200,n,8,1|19200,e,8,1|two|break|dtr=1 rts=0|drop sent|"
                          "drop received|three|break");
    EXPECT_EQ(*server.port.Format().baud, 19200);
}

TEST(ComPortServer, RefusedSettingsLeaveTheLineAlone) {
    Server server;
    server.Agree();
    server.Hear(Command(1, {0, 0, 1, 1}) + Command(2, {5}) + Command(3, {6}) + Command(4, {3})
                + Command(5, {99}));
    EXPECT_EQ(server.did, "");
}

TEST(ComPortServer, PlainTelnetIsLinesOfTextUntilBothSidesAgreeOnBytes) {
    Server server;
    server.Hear(Bytes({'a', 13, 0, 'b', 13, 10, 0, 'c'}));
    EXPECT_EQ(server.did, Bytes({'a', 13, 'b', 13, 10, 0, 'c'}));
    server.port.Send("x\r");
    server.port.Send("y\r\nz");
    EXPECT_EQ(std::exchange(server.port.Output(), {}), Bytes({'x', 13, 0, 'y', 13, 10, 'z'}));
    server.Agree();
    server.Hear(Bytes({13, 0}));
    EXPECT_EQ(server.did, Bytes({13, 0}));
    server.port.Send(Bytes({13, 'y', 255}));
    EXPECT_EQ(server.port.Output(), Bytes({13, 'y', 255, 255}));
}

TEST(ComPortServer, TellsAChangeOfTheModemLinesToAHostThatAskedForIt) {
    Server server;
    server.port.ShowLines(false, true);
    EXPECT_EQ(server.port.Output(), "") << "this host speaks no port control";
    server.port.ShowLines(true, true);
    server.Agree();
    server.port.ShowLines(false, true);
    EXPECT_EQ(std::exchange(server.port.Output(), {}), Command(107, {0x12}));
    server.port.ShowLines(false, true);
    EXPECT_EQ(server.port.Output(), "");
    EXPECT_EQ(server.Hear(Command(11, {0x01})), Command(111, {0x01}) + Command(107, {0}));
    server.port.ShowLines(true, true);
    EXPECT_EQ(server.port.Output(), "");
    server.port.ShowLines(true, false);
    EXPECT_EQ(server.port.Output(), Command(107, {0x01}));
}

TEST(ComPortServer, TellsLineErrorsToAHostThatAskedForThem) {
    Server server;
    server.Hear(Command(10, {255, 255}));
    server.port.ShowErrors({.frame = true});
    EXPECT_EQ(server.port.Output(), "") << "this host speaks no port control";
    server.Agree();
    server.port.ShowErrors({.frame = true, .parity = true});
    EXPECT_EQ(std::exchange(server.port.Output(), {}), Command(106, {0x0C}));
    EXPECT_EQ(server.Hear(Command(10, {0x04})), Command(110, {0x04}));
    server.port.ShowErrors({.frame = true, .parity = true});
    EXPECT_EQ(std::exchange(server.port.Output(), {}), Command(106, {0x04}));
    server.port.ShowErrors({.frame = true});
    server.port.ShowErrors({});
    EXPECT_EQ(server.port.Output(), "");
    Server other;
    other.Agree();
    other.port.ShowErrors({.frame = true});
    EXPECT_EQ(other.port.Output(), "") << "nobody asked";
}

TEST(ComPortServer, HostMayAskForAPause) {
    Server server;
    server.Agree();
    server.Hear(Command(8, ""));
    EXPECT_TRUE(server.port.Suspended());
    server.Hear(Command(9, ""));
    EXPECT_FALSE(server.port.Suspended());
}

TEST(ComPortServer, DamagedAndEndlessRequestsDoNotTakeTheDataWithThem) {
    Server server;
    server.Agree();
    EXPECT_EQ(server.Hear(Bytes({255, 250, 44, 1, 0, 0, 255, 251, 3}) + "a"), Option(Do, 3));
    EXPECT_EQ(server.did, "a");
    server.Hear(Bytes({255, 250, 44, 1}) + std::string(100'000, 'x') + Bytes({255, 240}) + "b"
                + Bytes({255, 250, 255, 240, 255, 250, 44, 255, 240, 255, 240}) + "c");
    EXPECT_EQ(server.did, "bc");
    EXPECT_EQ(*server.port.Format().baud, 9600);
}

TEST(ComPortServer, HearsTheSameHoweverTheStreamIsCut) {
    const std::string talk = "text\r" + Bytes({0}) + AllAsked + Option(Do, 5) + "one"
                             + Bytes({255, 255}) + Command(1, {0, 0, 75, 0}) + Command(3, {3})
                             + "two\r" + Bytes({0}) + Command(12, {3}) + Bytes({255, 243})
                             + Command(11, {255, 255}) + "end";
    Server whole;
    const std::string answers = whole.Hear(talk);
    EXPECT_EQ(whole.did, "text\rone" + Bytes({255}) + "|19200,n,8,1|19200,e,8,1|two\r" + Bytes({0})
                             + "|drop sent|drop received|break|end");
    for (std::size_t cut = 0; cut <= talk.size(); ++cut) {
        ComPortServer port;
        std::vector<HostAction> did = port.Receive(std::string_view(talk).substr(0, cut));
        for (HostAction& action : port.Receive(std::string_view(talk).substr(cut)))
            did.push_back(std::move(action));
        EXPECT_EQ(Words(did), whole.did) << cut;
        EXPECT_EQ(port.Output(), answers) << cut;
    }
}

} // namespace
} // namespace qncomm::testing

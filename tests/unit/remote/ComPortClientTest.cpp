// The client's side of a remote serial port, byte for byte.
#include "ComPortClient.h"
#include "TelnetBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace qncomm::testing {
namespace {

using qncomm::ComPortClient;
using qncomm::IoStatus;
using qncomm::LineSettings;
using ::testing::HasSubstr;

const std::string AllAgreed =
    Option(Do, 0) + Option(Will, 0) + Option(Do, 3) + Option(Will, 3) + Option(Do, 44);

struct Client {
    /// What the client says to these bytes, and what of them is data.
    std::string Hear(std::string_view bytes) {
        protocol.Receive(bytes, data);
        return TakeOutput();
    }
    std::string TakeOutput() {
        std::string output(protocol.Output());
        protocol.Sent(output.size());
        return output;
    }
    Client& Agree() {
        protocol.Offer();
        Hear(AllAgreed);
        return *this;
    }

    ComPortClient protocol;
    std::string data;
};

constexpr LineSettings Mark7{57600, 'm', 7, 2, false, true};

TEST(ComPortClient, OffersItsOptionsAndGoesOnWhenAllThatMatterAreTaken) {
    Client client;
    client.protocol.Offer();
    EXPECT_EQ(client.TakeOutput(),
              Option(Will, 0) + Option(Do, 0) + Option(Will, 3) + Option(Do, 3) + Option(Will, 44));
    EXPECT_EQ(client.Hear(Option(Do, 0) + Option(Do, 44)), "");
    EXPECT_FALSE(client.protocol.Agreed());
    EXPECT_EQ(client.Hear(Option(Will, 0)), "");
    EXPECT_TRUE(client.protocol.Agreed());
    EXPECT_TRUE(client.protocol.Refusal().Ok());
}

TEST(ComPortClient, RefusedOptionsThatItNeedsAreTold) {
    Client noPort;
    noPort.protocol.Offer();
    noPort.Hear(Option(Dont, 44));
    EXPECT_EQ(noPort.protocol.Refusal().status, IoStatus::Unsupported);
    EXPECT_THAT(noPort.protocol.Refusal().text, HasSubstr("no remote port control"));
    Client noBinary;
    noBinary.protocol.Offer();
    noBinary.Hear(Option(Wont, 0));
    EXPECT_THAT(noBinary.protocol.Refusal().text, HasSubstr("refuses 8-bit data"));
    Client noGoAhead;
    noGoAhead.protocol.Offer();
    noGoAhead.Hear(Option(Wont, 3) + Option(Dont, 3));
    EXPECT_TRUE(noGoAhead.protocol.Refusal().Ok());
}

TEST(ComPortClient, AnswersOffersOnceAndConfirmsNothingTwice) {
    Client client;
    client.Agree();
    EXPECT_EQ(client.Hear(AllAgreed), "");
    EXPECT_EQ(client.Hear(Option(Will, 1)), Option(Dont, 1));
    EXPECT_EQ(client.Hear(Option(Do, 24)), Option(Wont, 24));
    EXPECT_EQ(client.Hear(Option(Wont, 1) + Option(Dont, 24)), "");
    EXPECT_EQ(client.Hear(Option(Will, 44)), Option(Do, 44));
    EXPECT_EQ(client.Hear(Option(Will, 44)), "");
}

TEST(ComPortClient, AsksForEachSetting) {
    Client client;
    client.Agree();
    client.protocol.Configure(Mark7);
    EXPECT_EQ(client.TakeOutput(), Command(1, {0, 0, 225, 0}) + Command(2, {7}) + Command(3, {4})
                                       + Command(4, {2}) + Command(5, {3}));
    client.protocol.HoldLines(true, false);
    EXPECT_EQ(client.TakeOutput(), Command(5, {8}) + Command(5, {12}));
    client.protocol.SetBreak(true);
    client.protocol.SetBreak(false);
    EXPECT_EQ(client.TakeOutput(), Command(5, {5}) + Command(5, {6}));
}

TEST(ComPortClient, FlowControlIsAskedForInOneWord) {
    const std::pair<LineSettings, int> words[] = {{{9600, 'n', 8, 1, false, false}, 1},
                                                  {{9600, 'n', 8, 1, true, false}, 2},
                                                  {{9600, 'n', 8, 1, false, true}, 3},
                                                  {{9600, 'n', 8, 1, true, true}, 3}};
    for (const auto& [settings, word] : words) {
        Client client;
        client.protocol.Configure(settings);
        EXPECT_TRUE(client.TakeOutput().ends_with(Command(5, {word}))) << word;
    }
}

TEST(ComPortClient, ByteThatReadsAsACommandIsDoubled) {
    Client client;
    client.protocol.Send(Bytes({65, 255, 255, 66, 255}));
    EXPECT_EQ(client.TakeOutput(), Bytes({65, 255, 255, 255, 255, 66, 255, 255}));
    client.protocol.Configure({255, 'n', 8, 1, false, false});
    EXPECT_TRUE(client.TakeOutput().starts_with(Command(1, {0, 0, 0, 255, 255})));
    client.Hear(Bytes({65, 255, 255, 66}));
    EXPECT_EQ(client.data, Bytes({65, 255, 66}));
}

TEST(ComPortClient, IsSettledWhenEachRequestHasBeenAnswered) {
    Client client;
    client.protocol.Configure(Mark7);
    EXPECT_FALSE(client.protocol.Settled());
    client.Hear(Command(105, {3}) + Command(101, {0, 0, 225, 0}) + Command(102, {7}));
    EXPECT_EQ(client.protocol.Unanswered(), "mark parity");
    client.Hear(Command(103, {4}));
    EXPECT_EQ(client.protocol.Unanswered(), "2 stop bits");
    client.Hear(Command(104, {2}));
    EXPECT_TRUE(client.protocol.Settled());
    EXPECT_EQ(client.protocol.Unanswered(), "");
    EXPECT_TRUE(client.protocol.Refusal().Ok());
}

TEST(ComPortClient, OtherValueThanAskedForIsARefusalThatNamesBoth) {
    const std::pair<std::string, std::string> answers[] = {
        {Command(101, {0, 0, 37, 128}), "57600 baud, it answers 9600 baud"},
        {Command(102, {8}), "7 data bits, it answers 8 data bits"},
        {Command(103, {1}), "mark parity, it answers no parity"},
        {Command(103, {9}), "mark parity, it answers unknown parity"},
        {Command(104, {3}), "2 stop bits, it answers 1.5 stop bits"},
        {Command(105, {1}), "RTS/CTS, it answers no flow control"},
        {Command(102, ""), "7 data bits, it answers 0 data bits"},
    };
    for (const auto& [answer, text] : answers) {
        Client client;
        client.protocol.Configure(Mark7);
        client.Hear(answer);
        EXPECT_EQ(client.protocol.Refusal().status, IoStatus::Unsupported);
        EXPECT_THAT(client.protocol.Refusal().text, HasSubstr(text));
    }
}

TEST(ComPortClient, AnswersToModemLinesAreNotAwaitedNorTakenForFlowControl) {
    Client client;
    client.protocol.HoldLines(true, true);
    client.protocol.AskForStates();
    EXPECT_EQ(client.TakeOutput(),
              Command(5, {8}) + Command(5, {11}) + Command(11, {0x33}) + Command(10, {0x0E}));
    EXPECT_TRUE(client.protocol.Settled());
    client.protocol.Configure({300, 'n', 8, 1, false, false});
    client.Hear(Command(101, {0, 0, 1, 44}) + Command(102, {8}) + Command(103, {1})
                + Command(104, {1}));
    client.Hear(Command(105, {9}) + Command(105, {12}) + Command(111, {0}));
    EXPECT_EQ(client.protocol.Unanswered(), "no flow control");
    client.Hear(Command(105, {1}));
    EXPECT_TRUE(client.protocol.Settled());
    EXPECT_TRUE(client.protocol.Refusal().Ok());
}

TEST(ComPortClient, HearsOfLineErrorsOnce) {
    Client client;
    client.Agree();
    client.Hear("a" + Command(106, {0x61}) + Command(106, ""));
    const auto text = [&client] {
        const auto errors = client.protocol.TakeLineErrors();
        return std::string(errors.frame ? "frame " : "") + (errors.overrun ? "overrun " : "")
               + (errors.parity ? "parity " : "") + (errors.overflow ? "overflow " : "");
    };
    EXPECT_EQ(text(), "") << "that something may be sent or read is no error";
    client.Hear(Command(106, {0x08}));
    EXPECT_EQ(text(), "frame ");
    client.Hear(Command(106, {0x04}) + "b" + Command(106, {0x63}));
    EXPECT_EQ(text(), "overrun parity ");
    EXPECT_EQ(text(), "");
    EXPECT_EQ(client.data, "ab");
}

TEST(ComPortClient, AnswersThatNobodyAwaitsChangeNothing) {
    Client client;
    client.Agree();
    client.Hear(Command(101, {0, 0, 1, 44}) + Command(112, {1}) + Command(106, {0})
                + Command(100, "a name") + Bytes({255, 250, 24, 1, 255, 240}) + Command(101, ""));
    EXPECT_TRUE(client.protocol.Settled());
    EXPECT_TRUE(client.protocol.Refusal().Ok());
    EXPECT_FALSE(client.protocol.Purging());
    EXPECT_EQ(client.data, "");
}

TEST(ComPortClient, DropsWhatCameBeforeTheServerHadDroppedItsPart) {
    Client client;
    client.Hear("old");
    client.protocol.PurgeReceived();
    client.protocol.PurgeReceived();
    EXPECT_EQ(client.TakeOutput(), Command(12, {1}) + Command(12, {1}));
    client.Hear("stale" + Command(112, {1}) + "also" + Command(112, {2}) + "still"
                + Command(112, {1}) + "new");
    EXPECT_EQ(client.data, "oldnew");
    client.protocol.PurgeUnsent();
    EXPECT_EQ(client.TakeOutput(), Command(12, {2}));
    client.Hear("more");
    EXPECT_EQ(client.data, "oldnewmore");
}

TEST(ComPortClient, ServerThatNeverAnswersPurgesLosesNoData) {
    Client client;
    client.protocol.PurgeReceived();
    client.protocol.ForgetPurges(true);
    client.protocol.PurgeReceived();
    EXPECT_EQ(client.TakeOutput(), Command(12, {1}) + Command(12, {1}));
    client.Hear("data");
    EXPECT_EQ(client.data, "data");
}

TEST(ComPortClient, TellsTheModemLineAndThePause) {
    Client client;
    EXPECT_FALSE(client.protocol.Dsr().has_value());
    client.Hear(Command(107, {0xB0}));
    EXPECT_EQ(client.protocol.Dsr(), true);
    client.Hear(Command(107, {0x92}) + Command(108, ""));
    EXPECT_EQ(client.protocol.Dsr(), false);
    EXPECT_TRUE(client.protocol.Suspended());
    client.Hear(Command(109, ""));
    EXPECT_FALSE(client.protocol.Suspended());
}

TEST(ComPortClient, DamagedAndEndlessCommandsDoNotTakeTheDataWithThem) {
    Client client;
    client.Agree();
    client.Hear(Bytes({255, 250, 44, 107, 0x20, 255, 251, 1}) + "a"); // ended by another command
    client.Hear(Bytes({255, 250, 44, 107}) + std::string(100'000, 'x') + Bytes({255, 240}) + "b");
    client.Hear(Bytes({255, 250, 255, 240}) + "c" + Bytes({255, 240}) + "d" + Bytes({255, 241}));
    EXPECT_EQ(client.data, "abcd");
    EXPECT_FALSE(client.protocol.Dsr().has_value());
    client.Hear(Command(107, {0x20}));
    EXPECT_EQ(client.protocol.Dsr(), true);
}

TEST(ComPortClient, KeepsNoMoreOfTheLineThanItsBound) {
    Client client;
    client.Agree();
    const std::string piece(1000, 'x');
    for (int count = 0; count < 65; ++count)
        client.Hear(piece);
    EXPECT_FALSE(client.protocol.TakeLineErrors().overflow);
    EXPECT_EQ(client.data.size(), 65'000U);
    for (int count = 0; count < 65; ++count)
        client.Hear(piece);
    EXPECT_TRUE(client.protocol.TakeLineErrors().overflow);
    EXPECT_EQ(client.data.size(), ComPortClient::MostData);
    client.data.clear();
    client.Hear(piece);
    EXPECT_EQ(client.data, piece);
}

TEST(ComPortClient, OwesAServerThatAsksWithoutEndNoMoreThanItsBound) {
    for (const std::string& asked : {Option(Do, 5), Option(Will, 0) + Option(Wont, 0)}) {
        Client client;
        client.protocol.Offer();
        client.TakeOutput();
        for (int count = 0; count < 100'000; ++count)
            client.protocol.Receive(asked, client.data); // and takes no answer
        EXPECT_LE(client.protocol.Output().size(), ComPortClient::MostOwed + 3);
        EXPECT_FALSE(client.protocol.Refusal().Ok());
    }
}

/// Everything that a client can hear, in one stream.
const std::string LongTalk = AllAgreed + Option(Will, 1) + "first" + Bytes({255, 255})
                             + Command(112, {1}) + "data" + Command(101, {0, 0, 225, 0})
                             + Bytes({255, 241}) + Command(102, {7}) + "\r\n" + Command(103, {4})
                             + Command(104, {2}) + Command(107, {255, 255}) + Command(105, {3})
                             + Bytes({0, 255, 255, 255, 255, 7}) + Command(108, "");

void ExpectLongTalk(const std::function<void(Client&)>& hear) {
    Client client;
    client.protocol.Offer();
    client.protocol.PurgeReceived();
    client.protocol.Configure(Mark7);
    client.TakeOutput();
    hear(client);
    EXPECT_EQ(client.data, "data\r\n" + Bytes({0, 255, 255, 7}));
    EXPECT_EQ(client.TakeOutput(), Option(Dont, 1));
    EXPECT_TRUE(client.protocol.Agreed());
    EXPECT_TRUE(client.protocol.Settled());
    EXPECT_TRUE(client.protocol.Refusal().Ok());
    EXPECT_EQ(client.protocol.Dsr(), true);
    EXPECT_TRUE(client.protocol.Suspended());
}

TEST(ComPortClient, HearsTheSameHoweverTheStreamIsCut) {
    for (std::size_t cut = 0; cut <= LongTalk.size(); ++cut) {
        SCOPED_TRACE(cut);
        ExpectLongTalk([cut](Client& client) {
            client.protocol.Receive(std::string_view(LongTalk).substr(0, cut), client.data);
            client.protocol.Receive(std::string_view(LongTalk).substr(cut), client.data);
        });
    }
    ExpectLongTalk([](Client& client) {
        for (const char byte : LongTalk)
            client.protocol.Receive({&byte, 1}, client.data);
    });
}

} // namespace
} // namespace qncomm::testing

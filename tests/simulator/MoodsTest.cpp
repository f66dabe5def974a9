// What real printers do and an obliging one does not.
#include "PrinterRig.h"
#include "testing/printer/TestPictures.h"

#include <map>

namespace qncomm::testing {
namespace {

constexpr std::string_view Ok = "Ok\r\n";

TEST(AnswerTime, ALineIsEchoedAtOnceAndCarriedOutWhenItsTimeHasCome) {
    PrinterRig rig("R7G?answer=80:OPEN");
    const std::string line = "open \"UART1:\" FOR OUTPUT AS #68:CLOSE68";
    EXPECT_EQ(rig.Ask(line), line + "\r\n");
    EXPECT_EQ(rig.Read(79'999), "");
    EXPECT_EQ(rig.Read(1), Ok);
    EXPECT_EQ(rig.Line("PRINT 1"), "1") << "other commands take no time";
}

TEST(AnswerTime, TheLastOneThatFitsCounts) {
    PrinterRig rig("R7G?answer=40&answer=700:FILES \"CARD&answer=0:PRINT");
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
    rig.Send("FILES\"card1:\"\r");
    EXPECT_EQ(rig.Read(699'999), "FILES\"card1:\"\r\n");
    EXPECT_NE(rig.Read(1), "");
    rig.Send("FILES\"c:\"\r");
    EXPECT_EQ(rig.Read(39'999), "FILES\"c:\"\r\n");
    EXPECT_NE(rig.Read(1), "");
}

TEST(AnswerTime, WhatIsTypedMeanwhileIsCarriedOutAfterwards) {
    PrinterRig rig("R7G?answer=100:PRINT 1");
    rig.Send("PRINT 1\rPRINT 2\r");
    EXPECT_EQ(rig.Read(100'000), "PRINT 1\r\n1\r\nOk\r\nPRINT 2\r\n2\r\nOk\r\n");
}

TEST(AnswerTime, LinesOfAProgramTakeNone) {
    PrinterRig rig("R7G?answer=40");
    rig.Send("SYSVAR(18)=8:IMMEDIATE OFF\r10 PRINT 1\rPRINT 2\rPRINT 3\rIMMEDIATE ON\rRUN\r");
    EXPECT_EQ(rig.Read(119'999), "SYSVAR(18)=8:IMMEDIATE OFF\r\n");
    EXPECT_EQ(rig.Read(1), "1\r\n2\r\n3\r\n");
}

TEST(AnswerTime, ALoadTakesTheBytesThatCameMeanwhile) {
    PrinterRig rig("R7G?answer=100:IMAGE LOAD");
    const std::string picture = TestPcx(30, 20);
    rig.Send("IMAGE LOAD \"A.PCX\"," + std::to_string(picture.size()) + ",\"\"\r" + picture);
    EXPECT_TRUE(rig.Read(100'000).ends_with("\"\"\r\nOk\r\n"));
    EXPECT_EQ(rig.Lines("IMAGES").size(), 2U);
}

TEST(AnswerTime, IsCutShortByABreak) {
    PrinterRig rig("R7G?answer=100:PRINT 1");
    rig.Ask("PRINT 1");
    rig.Printer().Break(rig.Now());
    EXPECT_EQ(rig.Read(), "Break\r\nOk\r\n");
    EXPECT_EQ(rig.Read(1'000'000), "") << "it is not carried out any more";
    EXPECT_EQ(rig.Line("PRINT 2"), "2");
}

TEST(LateErrors, ComeAWhileAfterTheEchoAndThePromptWithThem) {
    PrinterRig rig("R7G?late-errors=300");
    EXPECT_EQ(rig.Ask("KILL \"tmp:NONE\""), "KILL \"tmp:NONE\"\r\n");
    EXPECT_EQ(rig.Read(299'999), "");
    EXPECT_EQ(rig.Read(1), "Error 1022: File not found\r\nOk\r\n");
    EXPECT_EQ(rig.Line("PRINT 1"), "1") << "what goes well is said at once";
    EXPECT_EQ(rig.Line("PRINT )"), "Error 19: Syntax error") << "so is what does not read";
}

TEST(LateErrors, ComeBehindWhatAProgramSaidAndBeforeTheNextLine) {
    PrinterRig rig("R7G?late-errors=300");
    rig.Ask("10 PRINT 1:KILL \"tmp:NONE\"");
    rig.Send("RUN\rPRINT 2\r");
    EXPECT_EQ(rig.Read(), "RUN\r\n1\r\n");
    EXPECT_EQ(rig.Read(300'000), "Error 1022: File not found\r\nOk\r\nPRINT 2\r\n2\r\nOk\r\n");
}

TEST(LateErrors, AreSaidAtOnceByABreak) {
    PrinterRig rig("R7G?late-errors=300");
    rig.Ask("FT \"NONE\"");
    rig.Printer().Break(rig.Now());
    EXPECT_EQ(rig.Read(), "Error 1040: Font not found\r\nOk\r\n");
    EXPECT_EQ(rig.Read(1'000'000), "");
}

TEST(LongSetup, HasManyUnknownItemsAndTheChannelsAtItsEnd) {
    PrinterRig rig("R7G?long-setup");
    const std::vector<std::string> lines = rig.Lines("SETUP WRITE\"uart1:\"");
    const std::size_t plain = PrinterRig("R7G").Lines("SETUP WRITE\"uart1:\"").size();
    EXPECT_GT(lines.size(), 5 * plain);
    EXPECT_TRUE(lines.back().starts_with("SER-COM,UART3,"));
    std::map<std::string, int> items;
    for (const std::string& line : lines) {
        EXPECT_NE(line.find(','), std::string::npos) << line;
        EXPECT_EQ(++items[line.substr(0, line.rfind(','))], 1) << line;
    }
    EXPECT_TRUE(rig.Lines("SETUP\"CUTTER,GROUP 3,LEVEL,77\"").empty());
    EXPECT_NE(rig.Ask("SETUP WRITE\"uart1:\"").find("CUTTER,GROUP 3,LEVEL,77\r\n"),
              std::string::npos);
}

TEST(Greeting, IsAllThatAStartSays) {
    PrinterRig rig("R7G?boot-ms=100&greeting=At your service.");
    rig.Ask("REBOOT");
    EXPECT_EQ(rig.Read(100'000), "At your service.\r\n");
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
    PrinterRig silent("R7G?boot-ms=100&greeting=");
    silent.Ask("REBOOT");
    EXPECT_EQ(silent.Read(100'000), "");
    EXPECT_EQ(silent.Line("PRINT 1"), "1");
}

TEST(Noise, StandsBetweenReplyAndNextEchoAndSpoilsNeither) {
    PrinterRig rig("R7G?noise=1,seed=3");
    const std::string reply = "PRINT 1\r\n1\r\nOk\r\n";
    EXPECT_EQ(rig.Ask("PRINT 1"), reply) << "no reply has been given yet";
    for (int i = 0; i < 100; ++i) {
        const std::string all = rig.Ask("PRINT 1");
        EXPECT_TRUE(all.ends_with(reply));
        EXPECT_GT(all.size(), reply.size());
        EXPECT_LE(all.size(), reply.size() + 8);
        EXPECT_EQ(all.find_first_of("\x11\x13"), std::string::npos);
    }
}

TEST(Noise, ComesByItselfWhereNobodyTypes) {
    PrinterRig rig("R7G?noise=1,seed=3");
    rig.Ask("PRINT 1");
    EXPECT_NE(rig.Read(100'000), "");
    EXPECT_EQ(rig.Read(1'000'000), "") << "once for each reply";
    EXPECT_EQ(rig.Ask("PRINT 1"), "PRINT 1\r\n1\r\nOk\r\n");
}

std::string NoisySession(const std::string& address) {
    PrinterRig rig(address);
    std::string all;
    for (int i = 0; i < 50; ++i)
        all += rig.Ask("PRINT 1");
    return all;
}

TEST(Noise, IsTheSameWithTheSameSeed) {
    const std::string one = NoisySession("R7G?noise=0.3,seed=1");
    EXPECT_NE(one, NoisySession("R7G"));
    EXPECT_EQ(one, NoisySession("R7G?noise=0.3,seed=1"));
    EXPECT_NE(one, NoisySession("R7G?noise=0.3,seed=2"));
}

TEST(Power, IsLostOnceAfterSoManyStatements) {
    PrinterRig rig("R7G?boot-ms=1000&power-lost-after=3");
    rig.Ask("10 OPEN \"c:HALF\" FOR OUTPUT AS 1");
    rig.Ask("20 PRINT#1,\"written\":PRINT \"before\":PRINT \"after\"");
    EXPECT_TRUE(rig.Printer().Dsr());
    EXPECT_EQ(rig.Ask("RUN"), "RUN\r\n");
    EXPECT_FALSE(rig.Printer().Dsr());
    rig.Send("PRINT 1\r");
    EXPECT_EQ(rig.Read(999'999), "") << "nobody is there";
    EXPECT_TRUE(rig.Read(1).ends_with(Ok)) << "it starts again";
    EXPECT_TRUE(rig.Printer().Dsr());
    EXPECT_TRUE(rig.Lines("LIST").empty()) << "the program is gone";
    EXPECT_NE(rig.Ask("FILES \"c:\"").find("HALF                         0"), std::string::npos)
        << "the file was begun and not closed";
}

TEST(Power, TakesWhatIsStillOnTheLineWithIt) {
    PrinterRig rig("R7G?baud=300&paced&boot-ms=60000&power-lost-after=1");
    rig.Send("PRINT \"a long text that takes its time\":PRINT 2\r");
    const std::string said = rig.Read(30'000'000);
    EXPECT_TRUE(said.starts_with("PRINT \"a long")) << said;
    EXPECT_EQ(said.find("time\r\n"), std::string::npos) << said;
}

TEST(Power, FailsAtTheSameStatementsWithTheSameSeed) {
    const auto session = [](const std::string& seed) {
        PrinterRig rig("R7G?boot-ms=1&power-lost=0.1,seed=" + seed);
        std::string all;
        for (int i = 0; i < 50; ++i) {
            all += rig.Ask("PRINT 1");
            all += rig.Read(1000);
        }
        return all;
    };
    const std::string one = session("1");
    EXPECT_NE(one.find("Quorin 8.30"), std::string::npos);
    EXPECT_EQ(one, session("1"));
    EXPECT_NE(one, session("2"));
}

} // namespace
} // namespace qncomm::testing

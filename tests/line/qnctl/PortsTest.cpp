#include "testing/programs/QnctlFixture.h"

namespace {

using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::Not;

using Ports = qncomm::testing::QnctlFixture;

TEST_F(Ports, ShowWhatTheSettingsBindAndWhichIsConfigured) {
    Run({"connect", "--remember", "--port", "sim:R7G"});
    const auto document = Run({"ports", "--json"}).Document();
    bool found = false;
    for (const auto& port : document.at("ports"))
        if (port.at("address") == "sim:R7G") {
            found = true;
            EXPECT_EQ(port.at("configured"), true);
            EXPECT_EQ(port.at("source"), "settings");
        }
    EXPECT_TRUE(found);
    EXPECT_THAT(Run({"ports"}).out, HasSubstr("sim:R7G"));
}

TEST_F(Ports, ARememberedPortNeedsNoNameAnyMore) {
    StartSimulator({"--baud", "19200", "--format", "n,8,2"});
    ASSERT_EQ(Run({"connect", "--remember", "--port", Printer()}).status, 0);
    const Ended info = Run({"info"});
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_THAT(info.out, HasSubstr(Printer() + ") at 19200,N,8,2"));
}

TEST_F(Ports, APortNamedForOneRunLeavesTheConfiguredOneAlone) {
    StartSimulator({"--baud", "19200"});
    ASSERT_EQ(Run({"connect", "--remember", "--port", Printer()}).status, 0);
    ASSERT_EQ(Run({"connect", "--port", "sim:R7G?baud=38400"}).status, 0);
    EXPECT_THAT(SettingsText(), HasSubstr("Baudrate=38400"));
    const Ended info = Run({"info"});
    EXPECT_THAT(info.out, HasSubstr(Printer() + ") at 19200,N,8,2")) << info.err;
}

TEST_F(Ports, ASecondCallSpeaksToWhatAnsweredLast) {
    StartSimulator({"--baud", "2400", "--format", "n,8,1"});
    const Ended first = Run({"connect", "--port", Printer()});
    EXPECT_THAT(first.err, HasSubstr("Searching... 9600,m,8,2\n"));
    const Ended second = Run({"connect", "--port", Printer()});
    EXPECT_EQ(second.status, 0);
    EXPECT_THAT(second.err, Not(HasSubstr("Searching")));
    EXPECT_THAT(second.err, HasSubstr("at 2400"));
}

TEST_F(Ports, ShowsTheSearchLiveAndTheSettingsThatItFound) {
    StartSimulator({"--baud", "19200"});
    const Ended ended = Run({"connect", "--port", Printer()});
    EXPECT_THAT(ended.err, HasSubstr("AutoConnect initiate\nSearching... 9600,m,8,2\n"));
    EXPECT_THAT(ended.err, HasSubstr("Printer connected through UART1: at 19200, None, 8, 2, No "
                                     "Flowcontrol\n"));
    EXPECT_THAT(ended.out, HasSubstr("19200,N,8,2"));
}

TEST_F(Ports, ASearchOfAllPortsTakesTheOneThatAnswersAndNeverAVirtualPrinter) {
    ASSERT_EQ(Run({"connect", "--remember", "--port", "sim:R7G"}).status, 0);
    StartSimulator({"--baud", "57600", "--model", "R7B"});
    std::string settings = SettingsText();
    settings.replace(settings.find("[Ports]\n"), 8, "[Ports]\nCOM7=" + Printer() + "\n");
    WriteHostFile("qncomm/settings.ini", settings);
    const Ended ended = Run({"connect", "--all-ports", "--json"});
    ASSERT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.Document().at("address"), Printer());
    EXPECT_EQ(Run({"info", "--json"}).Document().at("model"), "R7B");
}

TEST_F(Ports, APortNumberStandsForItsAddress) {
    WriteHostFile("own.ini", "[Ports]\nCOM4=sim:R7F\n");
    const Ended ended = Run({"info", "--json", "--settings", PathOf("own.ini"), "--port", "com4"});
    EXPECT_EQ(ended.Document().at("model"), "R7F");
}

TEST_F(Ports, ADamagedSettingsFileIsKeptAsideAndSaid) {
    WriteHostFile("own.ini", std::string("[Settings]\n\0\0\0", 14)); // as a power cut tears it
    const Ended ended = Run({"info", "--settings", PathOf("own.ini"), "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.err, HasSubstr("own.ini.damaged-1"));
    EXPECT_TRUE(std::filesystem::exists(PathOf("own.ini.damaged-1")));
}

} // namespace

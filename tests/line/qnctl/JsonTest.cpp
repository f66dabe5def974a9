#include "testing/programs/QnctlFixture.h"

#include <fstream>

namespace {

using nlohmann::json;
using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::IsEmpty;

using JsonOutput = qncomm::testing::QnctlFixture;

TEST_F(JsonOutput, TellsThePorts) {
    const json document = Run({"ports", "--json"}).Document();
    EXPECT_TRUE(document.at("ports").is_array());
    EXPECT_EQ(document.at("settings"), SettingsPath());
}

TEST_F(JsonOutput, TellsTheConnection) {
    StartSimulator({"--baud", "57600", "--format", "n,8,1", "--uart", "2"});
    const Ended ended = Run({"connect", "--json", "--quiet", "--port", Printer()});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.Document(), json({{"port", nullptr},
                                      {"address", Printer()},
                                      {"channel", 2},
                                      {"baudrate", 57600},
                                      {"parity", "None"},
                                      {"databits", 8},
                                      {"stopbits", 1},
                                      {"flowcontrol", 0}}));
    EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(JsonOutput, TellsThePrintersIdentity) {
    const json document =
        Run({"info", "--json", "--port", "sim:R7H?version=Quorin 9.12 beta"}).Document();
    EXPECT_EQ(document.at("model"), "R7H");
    EXPECT_EQ(document.at("firmware"), "Quorin 9.12 beta");
    EXPECT_EQ(document.at("firmwareNumber"), "9.12");
    EXPECT_EQ(document.at("channel"), 1);
}

TEST_F(JsonOutput, TellsDevicesAndFiles) {
    const json devices = Run({"devices", "--json", "--port", "sim:R7A"}).Document().at("devices");
    ASSERT_EQ(devices.size(), 8U);
    EXPECT_EQ(devices[0].at("name"), "ram:");
    EXPECT_EQ(devices[0].at("present"), true);
    EXPECT_EQ(devices[5].at("name"), "tmp:");
    EXPECT_EQ(devices[5].at("present"), false);
    const json files = Run({"files", "RAM:", "--json", "--port", "sim:R7A"}).Document();
    EXPECT_EQ(files.at("device"), "ram:");
    EXPECT_EQ(files.at("files").size(), devices[0].at("files"));
    EXPECT_EQ(files.at("bytesFree"), devices[0].at("bytesFree"));
    EXPECT_EQ(files.at("files")[0].at("name"), "LAYOUT.LBL");
    EXPECT_EQ(files.at("files")[0].at("size"), 44);
}

TEST_F(JsonOutput, TellsAReplyInUtf8) {
    const Ended ended = Run({"send", "PRINT CHR$(128):PRINT \"å\"", "--json", "--port", "sim:R7G"});
    EXPECT_EQ(ended.Document(), json({{"lines", {"€", "å"}}}));
}

TEST_F(JsonOutput, TellsThatAnActionIsDone) {
    const Ended ended = Run({"copy", "rom:DEMO.PRG", "tmp:NEW.PRG", "--json", "--port", "sim:R7G"});
    EXPECT_EQ(ended.Document(), json({{"done", true}}));
}

TEST_F(JsonOutput, TellsARaisedErrorOnTheErrorStream) {
    const Ended ended = Run({"files", "nada:", "--json", "--port", "sim:R7G"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.out, IsEmpty());
    EXPECT_EQ(ended.Failure(), json({{"error",
                                      {{"number", 1010},
                                       {"source", "clsQuorin:IsValidPrinterDevice"},
                                       {"description", "Missing or invalid device name."}}}}));
}

TEST_F(JsonOutput, TellsUsageAndPortErrorsInTheSameForm) {
    const Ended usage = Run({"files", "--json"});
    EXPECT_EQ(usage.status, 2);
    EXPECT_THAT(usage.Failure().at("error").at("description"), HasSubstr("DEVICE"));
    const Ended port = Run({"info", "--json", "--port", "/dev/ttyNOT0"});
    EXPECT_EQ(port.status, 4);
    EXPECT_EQ(port.Failure().at("error").at("number"), 8002);
    EXPECT_EQ(port.Failure().at("error").at("source"), "PDQComm");
}

TEST_F(JsonOutput, TheTraceIsOneObjectALineWithTheBytesThatTravelled) {
    ASSERT_EQ(Run({"send", "PRINT 42", "--port", "sim:R7G", "--trace", PathOf("t.jsonl")}).status,
              0);
    std::ifstream in(PathOf("t.jsonl"));
    std::string sent;
    std::string received;
    std::int64_t last = 0;
    for (std::string line; std::getline(in, line);) {
        const json record = json::parse(line);
        EXPECT_GE(record.at("ms"), last);
        last = record.at("ms");
        if (record.at("kind") == "tx") sent += record.at("bytes");
        if (record.at("kind") == "rx") received += record.at("bytes");
    }
    EXPECT_THAT(sent, HasSubstr("PRINT 42\r\n"));
    EXPECT_THAT(received, HasSubstr("42\r\nOk\r\n"));
}

} // namespace

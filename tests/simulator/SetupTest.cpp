#include "PrinterRig.h"

#include <algorithm>

namespace qncomm::testing {
namespace {

std::vector<std::string> Matching(const std::vector<std::string>& lines, std::string_view part) {
    std::vector<std::string> found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [part](const std::string& line) { return line.find(part) != std::string::npos; });
    return found;
}

TEST(Setup, WritesEveryChannelItemOnceToTheHost) {
    PrinterRig rig("R7G?baud=57600&format=e,7,1");
    const auto lines = rig.Lines("SYSVAR(19)=2:SETUP WRITE \"UART1:\"");
    EXPECT_EQ(Matching(lines, "UART1,BAUDRATE"),
              std::vector<std::string>{"SER-COM,UART1,BAUDRATE,57600"});
    EXPECT_EQ(Matching(lines, "UART1,PARITY"),
              std::vector<std::string>{"SER-COM,UART1,PARITY,EVEN"});
    EXPECT_EQ(Matching(lines, "UART1,CHAR LENGTH"),
              std::vector<std::string>{"SER-COM,UART1,CHAR LENGTH,7"});
    EXPECT_EQ(Matching(lines, "UART1,STOPBITS"),
              std::vector<std::string>{"SER-COM,UART1,STOPBITS,1"});
    for (const std::string& line : lines)
        EXPECT_NE(line.find(','), std::string::npos) << line;
}

TEST(Setup, GoesOnlyToTheWiredChannel) {
    PrinterRig rig("R7G?uart=2");
    EXPECT_TRUE(rig.Lines("SETUP WRITE\"uart1:\"").empty());
    EXPECT_FALSE(rig.Lines("SETUP WRITE\"uart2:\"").empty());
    EXPECT_EQ(rig.Line("SETUP WRITE\"uart9:\""), "Error 1018: Device not found");
}

TEST(Setup, ChangesOneItem) {
    PrinterRig rig;
    EXPECT_TRUE(rig.Lines("SETUP\"LABEL,WIDTH,400\"").empty());
    EXPECT_EQ(Matching(rig.Lines("SETUP WRITE\"uart1:\""), "LABEL,WIDTH"),
              std::vector<std::string>{"LABEL,WIDTH,400"});
}

TEST(Setup, RefusesUnknownItemsAndValues) {
    PrinterRig rig;
    EXPECT_EQ(rig.Line("SETUP\"LABEL,COLOUR,RED\""), "Error 1030: Unknown setup item");
    EXPECT_EQ(rig.Line("SETUP\"SER-COM,UART1,BAUDRATE,12345\""), "Error 1031: Bad setup value");
    EXPECT_EQ(rig.Line("SETUP\"LABEL,WIDTH,0\""), "Error 1031: Bad setup value");
    EXPECT_EQ(rig.Line("SETUP\"LABEL,WIDTH,4x\""), "Error 1031: Bad setup value");
    EXPECT_EQ(rig.Line("SETUP\"SYSTEM,MODEL,R7H\""), "Error 1031: Bad setup value");
}

TEST(Setup, IsWrittenToAFileAndLoadedAgain) {
    PrinterRig rig;
    EXPECT_TRUE(rig.Lines("SETUP WRITE\"c:MINE.STP\"").empty());
    rig.Ask("SETUP\"LABEL,WIDTH,400\"");
    EXPECT_TRUE(rig.Lines("SETUP\"c:MINE.STP\"").empty());
    EXPECT_EQ(Matching(rig.Lines("SETUP WRITE\"uart1:\""), "LABEL,WIDTH"),
              std::vector<std::string>{"LABEL,WIDTH,832"});
    EXPECT_EQ(rig.Line("SETUP\"c:NONE.STP\""), "Error 1022: File not found");
}

TEST(Setup, DamagedFileChangesNothing) {
    PrinterRig rig;
    rig.Ask("OPEN \"c:BAD\" FOR OUTPUT AS 1:PRINT#1,\"LABEL,WIDTH,300\":PRINT#1,\"WRONG,1\":CLOSE");
    EXPECT_EQ(rig.Line("SETUP\"c:BAD\""), "Error 1030: Unknown setup item");
    EXPECT_EQ(Matching(rig.Lines("SETUP WRITE\"uart1:\""), "LABEL,WIDTH"),
              std::vector<std::string>{"LABEL,WIDTH,832"});
}

TEST(Setup, ChangedRateTakesEffectAfterTheReply) {
    PrinterRig rig("R7G?baud=9600");
    LineFormat format;
    format.baud = 9600;
    rig.Printer().SetHostFormat(format, rig.Now());
    EXPECT_TRUE(rig.Lines("SETUP\"SER-COM,UART1,BAUDRATE,19200\"").empty());
    EXPECT_EQ(rig.Ask("PRINT 1").find("Ok"), std::string::npos);
    format.baud = 19200;
    rig.Printer().SetHostFormat(format, rig.Now());
    rig.Send("\r");
    rig.Read();
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
}

} // namespace
} // namespace qncomm::testing

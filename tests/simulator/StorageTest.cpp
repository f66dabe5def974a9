#include "PrinterRig.h"

namespace qncomm::testing {
namespace {

TEST(StorageListing, ShowsHeaderRowsAndBytes) {
    PrinterRig rig("R7A");
    const auto lines = rig.Lines("FILES\"ram:\"");
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0], "FILES ON ram:");
    EXPECT_EQ(lines[1], "LAYOUT.LBL                  44");
    EXPECT_EQ(lines[4], "261994 BYTES FREE  150 BYTES USED");
}

TEST(StorageListing, SetsTwoFilesSideBySideOnModelsThatDo) {
    PrinterRig rig("R7G");
    const auto lines = rig.Lines("FILES \"c:\"");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1], "LAYOUT.LBL                  44    PRICES.DAT                  34");
    EXPECT_EQ(lines[2].substr(0, 11), "STARTUP.PRG");
}

TEST(StorageListing, ShowsSystemFilesOnlyWhenAsked) {
    PrinterRig rig;
    EXPECT_EQ(rig.Ask("FILES\"c:\"").find("CONFIG.SYS"), std::string::npos);
    EXPECT_NE(rig.Ask("FILES\"c:\",A").find("CONFIG.SYS"), std::string::npos);
}

TEST(StorageListing, DotNamesTheCurrentDirectory) {
    PrinterRig rig;
    EXPECT_EQ(rig.Lines("FILES \".\"").front(), "FILES ON c:");
    rig.Ask("Chdir\"tmp:\"");
    EXPECT_EQ(rig.Lines("FILES \".\"").front(), "FILES ON tmp:");
}

TEST(StorageListing, ModelWithoutListingAnswersWithThePromptAlone) {
    PrinterRig rig("R7C");
    EXPECT_TRUE(rig.Lines("FILES\"ram:\"").empty());
    EXPECT_TRUE(rig.Lines("FONTS").empty());
    EXPECT_TRUE(rig.Lines("IMAGES").empty());
}

TEST(Storage, DevicesAreTheModels) {
    const auto answers = [](std::string_view model, std::string_view device) {
        PrinterRig rig(model);
        return rig.Lines("FILES\"" + std::string(device) + "\"").front().substr(0, 5);
    };
    EXPECT_EQ(answers("R7A", "card1:"), "FILES");
    EXPECT_EQ(answers("R7D", "card1:"), "Error");
    EXPECT_EQ(answers("R7G", "tmp:"), "FILES");
    EXPECT_EQ(answers("R7G", "ram:"), "Error");
    EXPECT_EQ(answers("R7B", "c:"), "Error");
    EXPECT_EQ(answers("R7H", "RAM:"), "Error");
    EXPECT_EQ(answers("R7H", "C:"), "FILES");
}

TEST(Storage, FileNamesAreTheSameInEitherCase) {
    PrinterRig rig;
    rig.Ask("COPY \"c:PRICES.DAT\",\"tmp:Mixed.Dat\"");
    rig.Ask("COPY \"c:LAYOUT.LBL\",\"tmp:MIXED.dat\"");
    const auto lines = rig.Lines("FILES \"tmp:\"");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], "Mixed.Dat                   44") << "under the name that it had";
    EXPECT_EQ(lines[2], "4194260 BYTES FREE  44 BYTES USED");
    EXPECT_TRUE(rig.Lines("KILL \"TMP:mixed.DAT\"").empty());
    EXPECT_EQ(rig.Lines("FILES \"tmp:\"").size(), 2U);
}

TEST(Storage, CopiesRenamesAndKills) {
    PrinterRig rig;
    EXPECT_TRUE(rig.Lines("COPY \"c:PRICES.DAT\",\"tmp:P\"").empty());
    EXPECT_TRUE(rig.Lines("COPY \"tmp:P\",\"tmp:Q\":KILL \"tmp:P\"").empty());
    const std::string listing = rig.Ask("FILES\"tmp:\"");
    EXPECT_NE(listing.find("Q                           34"), std::string::npos);
    EXPECT_EQ(listing.find("P   "), std::string::npos);
    EXPECT_EQ(rig.Line("KILL \"tmp:P\""), "Error 1022: File not found");
    EXPECT_EQ(rig.Line("KILL \"rom:DEMO.PRG\""), "Error 1020: Device is write protected");
    EXPECT_EQ(rig.Line("COPY \"tmp:Q\",\"disk:Q\""), "Error 1018: Device not found");
}

TEST(Storage, FormatKeepsSystemFilesUnlessTold) {
    PrinterRig rig;
    EXPECT_TRUE(rig.Lines("FORMAT\"c:\"").empty());
    EXPECT_NE(rig.Ask("FILES\"c:\",A").find("CONFIG.SYS"), std::string::npos);
    EXPECT_EQ(rig.Ask("FILES\"c:\",A").find("PRICES.DAT"), std::string::npos);
    EXPECT_TRUE(rig.Lines("FORMAT\"c:\",A").empty());
    EXPECT_NE(rig.Ask("FILES\"c:\",A").find(" 0 BYTES USED"), std::string::npos);
    EXPECT_EQ(rig.Line("FORMAT\"rom:\""), "Error 1020: Device is write protected");
}

TEST(Storage, FullDeviceRefuses) {
    PrinterRig rig("R7G?capacity=300");
    EXPECT_EQ(rig.Line("COPY \"rom:DEMO.PRG\",\"c:A\":COPY \"c:A\",\"c:B\":COPY \"c:A\",\"c:C\""),
              "Error 1019: Device full");
}

TEST(Storage, TemporaryFilesGoWithARestart) {
    PrinterRig rig("R7G?boot-ms=0");
    rig.Ask("COPY \"c:PRICES.DAT\",\"tmp:P\":COPY \"c:PRICES.DAT\",\"c:P\"");
    rig.Ask("REBOOT");
    EXPECT_EQ(rig.Line("KILL \"tmp:P\""), "Error 1022: File not found");
    EXPECT_TRUE(rig.Lines("KILL \"c:P\"").empty());
}

TEST(Files, AreWrittenAndReadByNumber) {
    PrinterRig rig;
    rig.Ask("OPEN \"tmp:D\" FOR OUTPUT AS #1:PRINT#1,\"a,b\":PRINT#1,12:CLOSE 1");
    rig.Ask("OPEN \"tmp:D\" FOR APPEND AS 1:PRINT#1,\"last one, whole\":CLOSE");
    rig.Ask("OPEN \"tmp:D\" FOR INPUT AS #2:INPUT#2,A$,B$,N:LINE INPUT#2,C$");
    EXPECT_EQ(rig.Line("PRINT A$;B$;N+1;C$"), "ab13last one, whole");
    EXPECT_EQ(rig.Line("INPUT#2,A$"), "Error 1026: Input past end");
    EXPECT_EQ(rig.Line("PRINT#2,1"), "Error 1025: Bad file mode");
    EXPECT_EQ(rig.Line("CLOSE 3"), "Error 1024: File not open");
}

TEST(Files, PrintedBytesNeverExceedTheDevice) {
    PrinterRig rig("R7G?capacity=400");
    EXPECT_EQ(rig.Line("OPEN \"c:D\" FOR OUTPUT AS 1:FOR I=1 TO 50:PRINT#1,\"0123456789\":NEXT"),
              "Error 1019: Device full");
}

} // namespace
} // namespace qncomm::testing

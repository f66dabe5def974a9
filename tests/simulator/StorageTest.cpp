#include "PrinterBench.h"

namespace qncomm::testing {
namespace {

TEST(StorageListing, ShowsHeaderRowsAndBytes) {
    PrinterBench bench("R7A");
    const auto lines = bench.Lines("FILES\"ram:\"");
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0], "FILES ON ram:");
    EXPECT_EQ(lines[1], "LAYOUT.LBL                  44");
    EXPECT_EQ(lines[4], "261994 BYTES FREE  150 BYTES USED");
}

TEST(StorageListing, SetsTwoFilesSideBySideOnModelsThatDo) {
    PrinterBench bench("R7G");
    const auto lines = bench.Lines("FILES \"c:\"");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1], "LAYOUT.LBL                  44    PRICES.DAT                  34");
    EXPECT_EQ(lines[2].substr(0, 11), "STARTUP.PRG");
}

TEST(StorageListing, ShowsSystemFilesOnlyWhenAsked) {
    PrinterBench bench;
    EXPECT_EQ(bench.Ask("FILES\"c:\"").find("CONFIG.SYS"), std::string::npos);
    EXPECT_NE(bench.Ask("FILES\"c:\",A").find("CONFIG.SYS"), std::string::npos);
}

TEST(StorageListing, DotNamesTheCurrentDirectory) {
    PrinterBench bench;
    EXPECT_EQ(bench.Lines("FILES \".\"").front(), "FILES ON c:");
    bench.Ask("Chdir\"tmp:\"");
    EXPECT_EQ(bench.Lines("FILES \".\"").front(), "FILES ON tmp:");
}

TEST(StorageListing, ModelWithoutListingAnswersWithThePromptAlone) {
    PrinterBench bench("R7C");
    EXPECT_TRUE(bench.Lines("FILES\"ram:\"").empty());
    EXPECT_TRUE(bench.Lines("FONTS").empty());
    EXPECT_TRUE(bench.Lines("IMAGES").empty());
}

TEST(Storage, DevicesAreTheModels) {
    const auto answers = [](std::string_view model, std::string_view device) {
        PrinterBench bench(model);
        return bench.Lines("FILES\"" + std::string(device) + "\"").front().substr(0, 5);
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
    PrinterBench bench;
    bench.Ask("COPY \"c:PRICES.DAT\",\"tmp:Mixed.Dat\"");
    bench.Ask("COPY \"c:LAYOUT.LBL\",\"tmp:MIXED.dat\"");
    const auto lines = bench.Lines("FILES \"tmp:\"");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], "Mixed.Dat                   44") << "under the name that it had";
    EXPECT_EQ(lines[2], "4194260 BYTES FREE  44 BYTES USED");
    EXPECT_TRUE(bench.Lines("KILL \"TMP:mixed.DAT\"").empty());
    EXPECT_EQ(bench.Lines("FILES \"tmp:\"").size(), 2U);
}

TEST(Storage, CopiesRenamesAndKills) {
    PrinterBench bench;
    EXPECT_TRUE(bench.Lines("COPY \"c:PRICES.DAT\",\"tmp:P\"").empty());
    EXPECT_TRUE(bench.Lines("COPY \"tmp:P\",\"tmp:Q\":KILL \"tmp:P\"").empty());
    const std::string listing = bench.Ask("FILES\"tmp:\"");
    EXPECT_NE(listing.find("Q                           34"), std::string::npos);
    EXPECT_EQ(listing.find("P   "), std::string::npos);
    EXPECT_EQ(bench.Line("KILL \"tmp:P\""), "Error 1022: File not found");
    EXPECT_EQ(bench.Line("KILL \"rom:DEMO.PRG\""), "Error 1020: Device is write protected");
    EXPECT_EQ(bench.Line("COPY \"tmp:Q\",\"disk:Q\""), "Error 1018: Device not found");
}

TEST(Storage, FormatKeepsSystemFilesUnlessTold) {
    PrinterBench bench;
    EXPECT_TRUE(bench.Lines("FORMAT\"c:\"").empty());
    EXPECT_NE(bench.Ask("FILES\"c:\",A").find("CONFIG.SYS"), std::string::npos);
    EXPECT_EQ(bench.Ask("FILES\"c:\",A").find("PRICES.DAT"), std::string::npos);
    EXPECT_TRUE(bench.Lines("FORMAT\"c:\",A").empty());
    EXPECT_NE(bench.Ask("FILES\"c:\",A").find(" 0 BYTES USED"), std::string::npos);
    EXPECT_EQ(bench.Line("FORMAT\"rom:\""), "Error 1020: Device is write protected");
}

TEST(Storage, FullDeviceRefuses) {
    PrinterBench bench("R7G?capacity=300");
    EXPECT_EQ(bench.Line("COPY \"rom:DEMO.PRG\",\"c:A\":COPY \"c:A\",\"c:B\":COPY \"c:A\",\"c:C\""),
              "Error 1019: Device full");
}

TEST(Storage, TemporaryFilesGoWithARestart) {
    PrinterBench bench("R7G?boot-ms=0");
    bench.Ask("COPY \"c:PRICES.DAT\",\"tmp:P\":COPY \"c:PRICES.DAT\",\"c:P\"");
    bench.Ask("REBOOT");
    EXPECT_EQ(bench.Line("KILL \"tmp:P\""), "Error 1022: File not found");
    EXPECT_TRUE(bench.Lines("KILL \"c:P\"").empty());
}

TEST(Files, AreWrittenAndReadByNumber) {
    PrinterBench bench;
    bench.Ask("OPEN \"tmp:D\" FOR OUTPUT AS #1:PRINT#1,\"a,b\":PRINT#1,12:CLOSE 1");
    bench.Ask("OPEN \"tmp:D\" FOR APPEND AS 1:PRINT#1,\"last one, whole\":CLOSE");
    bench.Ask("OPEN \"tmp:D\" FOR INPUT AS #2:INPUT#2,A$,B$,N:LINE INPUT#2,C$");
    EXPECT_EQ(bench.Line("PRINT A$;B$;N+1;C$"), "ab13last one, whole");
    EXPECT_EQ(bench.Line("INPUT#2,A$"), "Error 1026: Input past end");
    EXPECT_EQ(bench.Line("PRINT#2,1"), "Error 1025: Bad file mode");
    EXPECT_EQ(bench.Line("CLOSE 3"), "Error 1024: File not open");
}

TEST(Files, PrintedBytesNeverExceedTheDevice) {
    PrinterBench bench("R7G?capacity=400");
    EXPECT_EQ(bench.Line("OPEN \"c:D\" FOR OUTPUT AS 1:FOR I=1 TO 50:PRINT#1,\"0123456789\":NEXT"),
              "Error 1019: Device full");
}

} // namespace
} // namespace qncomm::testing

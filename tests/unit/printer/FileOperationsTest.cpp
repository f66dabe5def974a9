#include "PrinterFixture.h"

namespace qncomm::testing {
namespace {

using FileOperations = PrinterFixture;

TEST_F(FileOperations, SendExactlyTheirLinesAndMarkWhatChanges) {
    KnowCleanDevices("R7A");
    Script("KILL \"ram:A.PRG\"");
    mQuorin.Kill("ram:A.PRG");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:"));
    Script("COPY \"ram:A\",\"card1:B\"");
    mQuorin.CopyFile("ram:A", "card1:B");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:", "card1:"));
    Script("CHDIR \"card1:\"");
    mQuorin.SetCurrentPrinterDir("card1:");
    Script("Chdir\"rom:\"");
    mQuorin.ChDir("rom:");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:", "card1:"));
    Script("FORMAT\"rom:\"");
    mQuorin.FormatPrinterDevice("rom:");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:", "rom:", "card1:"));
}

TEST_F(FileOperations, ARenameIsACopyAndADeleteOnOneLineAndMarksBothDevices) {
    KnowCleanDevices("R7A");
    Script("COPY \"ram:A\",\"card1:B\":KILL \"ram:A\"");
    mQuorin.RenameFile("ram:A", "card1:B");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:", "card1:"));
}

TEST_F(FileOperations, ARenameMarksTheOldDeviceFirst) {
    KnowCleanDevices("R7A");
    Script("COPY \"ram:A\",\"disk:B\":KILL \"ram:A\"");
    EXPECT_RAISED_FROM(mQuorin.RenameFile("ram:A", "disk:B"), "1010 clsQuorin:SetDeviceDirty");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:"));
}

TEST_F(FileOperations, NamesPassUnchangedQuotesIncluded) {
    KnowCleanDevices("R7A");
    Script("KILL \"Ram:a\"b \xE4.prg\"");
    mQuorin.Kill("Ram:a\"b \xE4.prg");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:"));
}

TEST_F(FileOperations, ABareNameMarksTheCurrentDevice) {
    KnowCleanDevices("R7A");
    Script("KILL \"A.PRG\"");
    Script("FILES \".\"", {"FILES ON card1:"});
    mQuorin.Kill("A.PRG");
    EXPECT_THAT(DirtyDevices(), ElementsAre("card1:"));
}

TEST_F(FileOperations, NothingIsMarkedWhenThePortIsRefused) {
    KnowCleanDevices("R7A");
    RefusePort();
    mQuorin.Kill("ram:A");
    mQuorin.CopyFile("ram:A", "ram:B");
    mQuorin.RenameFile("ram:A", "ram:B");
    mQuorin.FormatPrinterDevice("ram:");
    mQuorin.ChDir("ram:");
    mQuorin.SetCurrentPrinterDir("ram:");
    EXPECT_THAT(DirtyDevices(), IsEmpty());
    EXPECT_EQ(mDesktop.mLog.size(), 6U);
    GrantPort();
}

TEST_F(FileOperations, NothingIsMarkedWhenThePrinterReportsAnError) {
    KnowCleanDevices("R7A");
    Script("KILL \"ram:A\"", {"Error 1030 in line 0: File not found"});
    EXPECT_RAISED_FROM(mQuorin.Kill("ram:A"), "61030 clsDatalink:GetPrinterError");
    EXPECT_THAT(DirtyDevices(), IsEmpty());
}

TEST_F(FileOperations, SystemLevelAppliesToExtendedModelsOnly) {
    KnowCleanDevices("R7G");
    Script("FORMAT\"c:\",A");
    mQuorin.FormatPrinterDevice("c:", true);
    Script("FORMAT\"c:\"");
    mQuorin.FormatPrinterDevice("c:", false);
    Reconnect("R7D");
    Script("FORMAT\"c:\"");
    mQuorin.FormatPrinterDevice("c:", true);
}

TEST_F(FileOperations, OnlyChDirChecksTheDevice) {
    KnowCleanDevices("R7G");
    EXPECT_RAISED_FROM(mQuorin.ChDir("card2:"), "1010 clsQuorin:IsValidPrinterDevice");
    Script("CHDIR \"card2:\"");
    mQuorin.SetCurrentPrinterDir("card2:");
    EXPECT_RAISED_FROM(mQuorin.FormatPrinterDevice("card2:"),
                       "1010 clsQuorin:IsValidPrinterDevice");
    EXPECT_RAISED_FROM(mQuorin.FormatPrinterDevice("card"), "1010 clsQuorin:IsValidPrinterDevice");
}

TEST_F(FileOperations, FormatAllEndsAtTheFirstDeviceThatTheModelLacks) {
    KnowCleanDevices("R7A");
    Script("FORMAT\"ram:\"");
    Script("FORMAT\"card1:\"");
    EXPECT_RAISED_FROM(mQuorin.FormatAll(), "1010 clsQuorin:IsValidPrinterDevice");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:", "card1:"));
}

TEST_F(FileOperations, FormatAllFormatsNothingOnExtendedModelsSinceTheirFirstDeviceIsAbsent) {
    KnowCleanDevices("R7H");
    EXPECT_RAISED(mQuorin.FormatAll(true), ErrDeviceName);
    EXPECT_THAT(DirtyDevices(), IsEmpty());
}

TEST_F(FileOperations, FormatAllOnAnEmptyTableSendsNothing) {
    mQuorin.FormatAll();
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
}

TEST_F(FileOperations, FormatAllOnATableThatIsBuiltAnewOnTheWayEndsWell) {
    RefusePort();
    EXPECT_RAISED(mQuorin.ChDir("ram:"), ErrPrinterModel);
    GrantPort();
    ScriptIdentity("R7D");
    Script("FORMAT\"ram:\"");
    EXPECT_RAISED(mQuorin.FormatAll(), ErrDeviceName);
}

// -- How long a reply may take

struct TimeoutRow {
    const char* name;
    std::int32_t limit;
    const char* line;
    std::function<void(clsQuorin&)> call;
};

class ReplyTimeout : public PrinterFixture, public ::testing::WithParamInterface<TimeoutRow> {};

TEST_P(ReplyTimeout, IsCountedFromTheCommand) {
    KnowCleanDevices("R7A");
    mSerial.Handshake().Expect(std::string(GetParam().line) + "\r\n");
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(GetParam().call(mQuorin), "1008 Datalink:InputText");
    EXPECT_EQ(mLoop.NowMs() - start, GetParam().limit + 1);
    EXPECT_THAT(DirtyDevices(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Operations, ReplyTimeout,
    ::testing::Values(
        TimeoutRow{"Kill", 10000, "KILL \"ram:A\"", [](clsQuorin& q) { q.Kill("ram:A"); }},
        TimeoutRow{"SetCurrentPrinterDir", 1000, "CHDIR \"ram:\"",
                   [](clsQuorin& q) { q.SetCurrentPrinterDir("ram:"); }},
        TimeoutRow{"Format", 2500, "FORMAT\"ram:\"",
                   [](clsQuorin& q) { q.FormatPrinterDevice("ram:"); }},
        TimeoutRow{"ChDir", 500, "Chdir\"ram:\"", [](clsQuorin& q) { q.ChDir("ram:"); }},
        TimeoutRow{"Copy", 45000, "COPY \"ram:A\",\"ram:B\"",
                   [](clsQuorin& q) { q.CopyFile("ram:A", "ram:B"); }},
        TimeoutRow{"Rename", 45000, "COPY \"ram:A\",\"ram:B\":KILL \"ram:A\"",
                   [](clsQuorin& q) { q.RenameFile("ram:A", "ram:B"); }},
        TimeoutRow{"New", 45000, "NEW", [](clsQuorin& q) { q.NewProgram(); }},
        TimeoutRow{"Save", 45000, "SAVE\"ram:A\",L", [](clsQuorin& q) { q.SaveProgram("ram:A"); }},
        TimeoutRow{"Fre", 1000, "PRINT FRE(0)", [](clsQuorin& q) { q.Fre(); }},
        TimeoutRow{"GetSetup", 1000, "SETUP WRITE\"uart1:\"", [](clsQuorin& q) { q.GetSetup(); }},
        TimeoutRow{"Fonts", 1000, "FONTS", [](clsQuorin& q) { q.Fonts(); }},
        TimeoutRow{"Images", 1000, "IMAGES", [](clsQuorin& q) { q.Images(); }},
        TimeoutRow{"RemoveFont", 1000, "REMOVE FONT \"F\"",
                   [](clsQuorin& q) { q.RemoveFont("F"); }},
        TimeoutRow{"Files", 1000, "FILES\"ram:\"",
                   [](clsQuorin& q) {
                       std::string device = "ram:";
                       q.Files(device);
                   }}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace qncomm::testing

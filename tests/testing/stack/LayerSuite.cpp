// The command layer on the virtual printer, over each kind of line: what the printer really answers
// to each operation. A reboot takes its seconds on a real clock, and stands where the clock is
// driven.

#include "testing/core/ExpectRaised.h"
#include "testing/stack/LayerFixture.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

TEST_P(Layer, ListsCopiesRenamesAndDeletes) {
    EXPECT_TRUE(Upload("c:ONE.PRG", "10 PRINT 1\r\n20 END")->IsEmpty());
    mQuorin.CopyFile("c:ONE.PRG", "tmp:TWO.PRG");
    EXPECT_TRUE(mQuorin.PrinterDevices()->Item("tmp:")->Dirty);
    EXPECT_THAT(FilesOn("tmp:"), Contains("TWO.PRG"));
    EXPECT_FALSE(mQuorin.PrinterDevices()->Item("tmp:")->Dirty);
    EXPECT_GT(mQuorin.PrinterDevices()->Item("tmp:")->BytesFree, 0);
    EXPECT_GT(mQuorin.PrinterDevices()->Item("tmp:")->BytesUsed, 0);
    mQuorin.RenameFile("tmp:TWO.PRG", "c:THREE.PRG");
    EXPECT_TRUE(mQuorin.PrinterFileExists("c:three.prg"));
    EXPECT_FALSE(mQuorin.PrinterFileExists("tmp:TWO.PRG"));
    mQuorin.Kill("c:THREE.PRG");
    EXPECT_FALSE(mQuorin.PrinterFileExists("c:THREE.PRG"));
    EXPECT_RAISED_FROM(mQuorin.Kill("c:THREE.PRG"), "61022 clsDatalink:GetPrinterError");
}

TEST_P(Layer, ABareNameIsOnTheCurrentDevice) {
    mQuorin.ChDir("tmp:");
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 END")->IsEmpty());
    FilesOn("tmp:");
    mQuorin.Kill("A.PRG");
    EXPECT_TRUE(mQuorin.PrinterDevices()->Item("tmp:")->Dirty);
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("A.PRG")));
}

TEST_P(Layer, ListsSystemFilesWhenAskedTo) {
    const Lines plain = FilesOn("c:");
    const Lines all = FilesOn("c:", true);
    EXPECT_GT(all.size(), plain.size());
}

TEST_P(Layer, FormatsADevice) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 END")->IsEmpty());
    mQuorin.FormatPrinterDevice("tmp:");
    EXPECT_THAT(FilesOn("tmp:"), IsEmpty());
}

TEST_P(Layer, RunsChecksAndFetchesTheProgram) {
    EXPECT_GT(mQuorin.Fre(), 0);
    mQuorin.NewProgram();
    EXPECT_TRUE(mQuorin.IsProgramRunable());
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 PRINT \"a program\"\r\n20 END")->IsEmpty());
    EXPECT_TRUE(mQuorin.IsProgramRunable());
    mQuorin.RunProgram();
    EXPECT_GT(mQuorin.Fre(), 0) << "what the program printed is no reply";
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "10 PRINT \"a program\"\r\n20 END\r\n");
    EXPECT_THAT(mStack.mDesktop.mBoxes, IsEmpty());
}

TEST_P(Layer, AProgramWithALine1IsRunAndNotChecked) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "1 REM first\r\n20 END")->IsEmpty());
    EXPECT_FALSE(mQuorin.IsProgramRunable());
    mQuorin.RunProgram();
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "1 REM first\r\n20 END\r\n");
}

TEST_P(Layer, AModuleWithErrorsIsNotSavedAndItsErrorsNameTheirLines) {
    const auto errors = Upload("tmp:BAD.PRG", "10 PRINT 1\r\n20 PRIMT 2\r\n30 GOTO\r\n40 END");
    ASSERT_GE(errors->Count(), 1U);
    EXPECT_EQ(errors->Item(1)->QNErrInLine, 2);
    EXPECT_EQ(errors->Item(1)->QNText, "20 PRIMT 2");
    EXPECT_GT(errors->Item(1)->QNErrCode, 0);
    EXPECT_NE(errors->Item(1)->QNErrDesc, "");
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("BAD.PRG")));
    EXPECT_GT(mQuorin.Fre(), 0);
}

TEST_P(Layer, LinksModulesBehindAHeader) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "100 PRINT \"a\"")->IsEmpty());
    EXPECT_TRUE(Upload("tmp:B.PRG", "200 PRINT \"b\"")->IsEmpty());
    Collection<std::string> modules;
    modules.Add("A.PRG");
    modules.Add("tmp:B.PRG");
    EXPECT_TRUE(mQuorin.ProgramLink(modules, "5 REM head"));
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "5 REM head\r\n100 PRINT \"a\"\r\n200 PRINT \"b\"\r\n");
    modules.Add("NONE.PRG");
    EXPECT_FALSE(mQuorin.ProgramLink(modules));
}

TEST_P(Layer, AModuleThatIsMissingBehindAHeaderIsToldByTheFirstCallAndByTheNext) {
    Collection<std::string> modules;
    modules.Add("NONE.PRG");
    EXPECT_FALSE(mQuorin.ProgramLink(modules, "5 REM head")) << "the model was not known yet";
    EXPECT_FALSE(mQuorin.ProgramLink(modules, "5 REM head"));
}

TEST_P(Layer, ReadsChangesWritesAndLoadsTheSetup) {
    EXPECT_EQ(SetupValue("SER-COM,UART1,CHAR LENGTH"), "8");
    ASSERT_GT(mQuorin.PrinterSetupItems()->Count(), 4U);
    mQuorin.SetupWriteFile("tmp:s.set");
    EXPECT_THAT(FilesOn("tmp:"), Contains("s.set"));
    const std::string key = "SER-COM,UART2,BAUDRATE";
    const std::string before = SetupValue(key);
    mQuorin.ChangePrinterSetupItem("ser-com,uart2,baudrate", "2400");
    EXPECT_EQ(SetupValue(key), "2400");
    mQuorin.SetupLoadFile("tmp:s.set");
    EXPECT_EQ(SetupValue(key), before);
}

TEST_P(Layer, ListsFontsAndLeavesOutTheBitmapOnes) {
    mQuorin.Fonts();
    const Lines all = Names("fonts:");
    EXPECT_THAT(all, Contains("MS030RMN.1"));
    mQuorin.Fonts(true);
    EXPECT_THAT(Names("fonts:"), Not(Contains("MS030RMN.1")));
    std::string text;
    std::int16_t size = 0;
    std::int16_t width = 0;
    std::int16_t direction = 0;
    mQuorin.PrintFont(text, all.front(), size, 0, width, direction);
}

TEST_P(Layer, InstallsPrintsListsAndRemovesAnImage) {
    const std::string path = mFolder.Write("logo.pcx", SmallPcx());
    mQuorin.PrintImage(path);
    EXPECT_TRUE(mQuorin.PrinterFileExists("images:LOGO.PCX"));
    mQuorin.PrintImage(path, 10, 10, true, true);
    mQuorin.InstallImage(path, true);
    mQuorin.Images();
    EXPECT_THAT(Names("images:"), Contains("LOGO.PCX"));
    mQuorin.RemoveImage("LOGO.PCX");
    mQuorin.Images();
    EXPECT_THAT(Names("images:"), Not(Contains("LOGO.PCX")));
}

TEST_P(Layer, LoadsAnyFile) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += static_cast<char>(i * 7);
    mQuorin.SetCurrentPrinterDir("tmp:");
    mQuorin.Fileload(mFolder.Write("data.bin", bytes));
    std::string device = "tmp:";
    mQuorin.Files(device);
    EXPECT_EQ(mQuorin.PrinterDevices()->Item("tmp:")->Files->Item("DATA.BIN")->Size, 5000);
}

} // namespace
} // namespace qncomm::testing

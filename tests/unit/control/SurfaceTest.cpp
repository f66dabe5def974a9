#include "common/modErrorHandling.h"
#include "link/clsDataLink.h"
#include "printer/clsQuorin.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using ::testing::Contains;
using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using ::testing::IsSupersetOf;
using testing::Strings;

class Surface : public ControlFixture {
  protected:
    Surface() {
        mModel = "R7A";
        mReplies["FILES\"ram:\""] = {"FILES ON ram:", "A.PRG          12    B.PRG          34",
                                     "1000 BYTES FREE  46 BYTES USED"};
        mReplies["IMAGES"] = {"LOGO.1          5", "1000 BYTES FREE  46 BYTES USED"};
    }
    ~Surface() override { EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault); }
};

TEST_F(Surface, FilesAreListedOnceAndThenKept) {
    Run();
    const auto files = mControl->Files("RAM");
    ASSERT_NE(files, nullptr);
    EXPECT_EQ(files->Count(), 2U);
    EXPECT_EQ(files->Item("B.PRG")->Size, 34);
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"ram:\""));
    TakeSent();
    EXPECT_EQ(mControl->Files("ram:"), files);
    EXPECT_EQ(TakeSent(), "") << "no byte for a list that is kept";
    mControl->Files("ram", true);
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"ram:\""));
}

TEST_F(Surface, AnEmptyDeviceIsReadEveryTimeAndTwiceWhenRefreshed) {
    mReplies["FILES\"ram:\""] = {"FILES ON ram:", "1000 BYTES FREE  0 BYTES USED"};
    Run();
    EXPECT_TRUE(mControl->Files("ram:")->IsEmpty());
    EXPECT_TRUE(mControl->Files("ram:")->IsEmpty());
    EXPECT_EQ(TakeCommands().size(), 2U);
    mControl->Files("ram:", true);
    EXPECT_EQ(TakeCommands().size(), 2U);
}

TEST_F(Surface, AWriteMakesTheKeptListOutOfDate) {
    Run();
    mControl->Files("ram:");
    mControl->KillQN("ram:A.PRG");
    TakeCommands();
    mControl->Files("ram:");
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"ram:\""));
}

TEST_F(Surface, SystemFilesAreAskedForInTheFirstListingToo) {
    mModel = "R7G";
    Run();
    mReplies["FILES\"tmp:\",A"] = {"FILES ON tmp:", "A.SYS          12",
                                   "1000 BYTES FREE  46 BYTES USED"};
    mControl->Files("tmp:", false, true);
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"tmp:\",A"));
    mControl->Files("tmp:", true, true);
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"tmp:\",A")) << "and in a later one";
}

TEST_F(Surface, OnlySixDevicesHaveFiles) {
    Run();
    for (const char* name : {"fonts:", "images:", "ram: ", " ram:", "", ":", "card3:", "ram:x"}) {
        EXPECT_RAISED_FROM(mControl->Files(name), "1018 QNComm:Files") << name;
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
    }
    EXPECT_EQ(TakeSent(), "");
    for (const char* name : {"ram:", "RAM", "ROM:", "rom", "CARD1", "card1:", "card2:", "Card2",
                             "C", "c:", "TMP", "tmp:"}) {
        const int number = testing::NumberRaisedBy([&] { mControl->Files(name); });
        EXPECT_TRUE(number == 0 || number == ErrDeviceName) << name << number;
    }
}

TEST_F(Surface, ThePrinterWithoutListingsIsAskedAndComplainedOfTwice) {
    mModel = "R7C";
    Run();
    EXPECT_TRUE(mControl->Files("ram:")->IsEmpty());
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"ram:\"", "FILES\"ram:\""));
    EXPECT_EQ(mDesktop.mBoxes.size(), 2U);
    EXPECT_TRUE(mControl->Images()->IsEmpty());
    EXPECT_THAT(TakeCommands(), ElementsAre("IMAGES", "IMAGES"));
    EXPECT_EQ(mDesktop.mBoxes.size(), 4U);
}

TEST_F(Surface, ADeviceThatTheModelLacksIsRefusedByTheLayer) {
    Run();
    EXPECT_RAISED_FROM(mControl->Files("tmp:"), "1010 clsQuorin:IsValidPrinterDevice");
}

TEST_F(Surface, AListedDeviceThatIsNoLongerValidIsRefusedByTheControl) {
    Run();
    mControl->Files("ram:");
    mControl->Layer().PrinterDevices()->Item("ram:")->Valid = false;
    TakeSent();
    EXPECT_RAISED_FROM(mControl->Files("ram"), "1010 QNComm:Property Get Files");
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Surface, WhileTheHourglassShowsThereAreNoFilesAndNoBytes) {
    Run();
    Pointer::Screen().Set(PointerHourglass);
    EXPECT_EQ(mControl->Files("ram:"), nullptr);
    EXPECT_EQ(mControl->Files("no device"), nullptr);
    EXPECT_EQ(Pointer::Screen().Shape(), PointerHourglass);
    EXPECT_EQ(TakeSent(), "");
    Pointer::Screen().Set(PointerDefault);
}

TEST_F(Surface, AListingShowsTheHourglassInPlaceOfTheDefaultPointerOnly) {
    Run().PrinterType(); // the search shows an hourglass of its own
    std::vector<std::int16_t> shapes;
    const Subscription follow =
        Pointer::Screen().Changed.Connect([&](std::int16_t shape) { shapes.push_back(shape); });
    mControl->Files("ram:");
    EXPECT_THAT(shapes, ElementsAre(PointerHourglass, PointerDefault));
    Pointer::Screen().Set(5);
    shapes.clear();
    mControl->Files("ram:");
    EXPECT_THAT(shapes, ElementsAre(PointerDefault)) << "another pointer stays until the end";
}

TEST_F(Surface, AnyErrorPutsThePointerBack) {
    Run();
    mReplies["FILES\"ram:\""] = {"Error 99999999999: beyond 32 bits"};
    EXPECT_RAISED(mControl->Files("ram:"), RtOverflow);
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
    Pointer::Screen().Set(PointerHourglass);
    EXPECT_RAISED(mControl->InstallImage("/no/such.pcx"), ErrImageName);
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
}

TEST_F(Surface, ImagesAndFontsAreKeptAndCounted) {
    Run();
    EXPECT_EQ(mControl->ImagesCount(), 0);
    EXPECT_EQ(mControl->FontsCount(), 0);
    EXPECT_EQ(TakeSent(), "");
    EXPECT_EQ(mControl->Images()->Count(), 1U);
    EXPECT_EQ(mControl->ImagesCount(), 1);
    EXPECT_THAT(TakeCommands(), ElementsAre("IMAGES"));
    mControl->Images();
    EXPECT_THAT(TakeCommands(), IsEmpty());
    mControl->Images(true);
    EXPECT_THAT(TakeCommands(), ElementsAre("IMAGES"));
    mReplies["FONTS"] = {"MS030RMN.1      MS050RMN.1", "1000 BYTES FREE  0 BYTES USED"};
    mControl->Fonts();
    EXPECT_EQ(mControl->FontsCount(), 2);
}

TEST_F(Surface, ResettingThePointerIsLeftToTheEndOfTheWork) {
    Run();
    Pointer::Screen().Set(PointerHourglass);
    mControl->Images();
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
}

TEST_F(Surface, MemoryIsThatOfTheLastListing) {
    Run();
    EXPECT_RAISED(mControl->DeviceUsedMem("ram:"), RtInvalidCall);
    mControl->Files("ram:");
    TakeSent();
    EXPECT_EQ(mControl->DeviceUsedMem("RAM:"), "46");
    EXPECT_EQ(mControl->DeviceFreeMem("ram:"), "1000");
    EXPECT_RAISED(mControl->DeviceUsedMem("ram"), RtInvalidCall);
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Surface, VersionTellsFirmwareOrModel) {
    Run();
    EXPECT_EQ(mControl->Version(0), "Quorin v8.10");
    EXPECT_EQ(mControl->Version(1), "R7A");
    EXPECT_EQ(mControl->FirmwareVersion(), "Quorin v8.10");
    EXPECT_RAISED_FROM(mControl->Version(2), "1018 QNComm:Version");
    EXPECT_RAISED_FROM(mControl->Version(-1), "1018 QNComm:Version");
}

TEST_F(Surface, TheRestIsPassedOnWithItsArguments) {
    Run();
    mReplies["PRINT FRE(1)"] = {"4711"};
    mControl->CopyFile("ram:a", "card1:b");
    mControl->RenameFile("ram:a", "ram:b");
    mControl->ChDir("ram:");
    mControl->FormatDev("ram:", true);
    mControl->NewProgram();
    mControl->ChangePrinterSetupItem("a,b", "c");
    mControl->SetupLoadFile("ram:s");
    EXPECT_THAT(TakeCommands(),
                ElementsAre("COPY \"ram:a\",\"card1:b\"", "COPY \"ram:a\",\"ram:b\":KILL \"ram:a\"",
                            "Chdir\"ram:\"", "FORMAT\"ram:\"", "NEW", "SETUP\"A,B,c\"",
                            "SETUP\"ram:s\""));
}

TEST_F(Surface, ImagesAreRemovedAndPrintedOnTheLayer) {
    Run();
    mControl->RemoveImage("logo.1");
    EXPECT_THAT(TakeCommands(), ElementsAre("IMAGES", "REMOVE IMAGE \"logo.1\""));
    EXPECT_RAISED(mControl->PrintImage("/no/such.pcx", 5, 6, true), ErrImageName);
    EXPECT_RAISED(mControl->InstallFont("/no/such.ttf"), ErrFontName);
}

TEST_F(Surface, WhatPrintFontTookInPlaceOfNothingComesBack) {
    Run();
    PrintFontArgs args;
    args.sFontName = "MS050RMN";
    mControl->PrintFont(args);
    EXPECT_EQ(args.sText, "The quick brown fox...");
    EXPECT_EQ(args.iSize, 12);
    EXPECT_EQ(args.iWidth, 100);
    EXPECT_EQ(args.iDir, 1);
}

TEST_F(Surface, ProgramsArePassedOn) {
    Run();
    mControl->UploadQNProgram(mFolder.File("p.prg"));
    EXPECT_THAT(TakeCommands(), ElementsAre("LIST"));
    EXPECT_FALSE(mControl->IsProgramRunable()) << "the printer did not say that it ran";
    EXPECT_THAT(TakeCommands(), ElementsAre("List 1", "1 PRINT \"RUN MODE\":END", "RUN", "1"));
    mControl->RunProgram();
    EXPECT_THAT(TakeCommands(), Contains("RUN"));
    Collection<std::string> modules;
    modules.Add("ram:a.prg");
    EXPECT_TRUE(mControl->ProgramLink(modules, "10 REM"));
    EXPECT_THAT(TakeCommands(), IsSupersetOf({"NEW", "10 REM", "MERGE\"ram:a.prg\""}));
}

TEST_F(Surface, TheSetupIsReadAndWrittenOnThePrinter) {
    mReplies["SETUP WRITE\"ram:s\""] = {};
    Run();
    EXPECT_EQ(mControl->Setup()->Item("UART1,BAUDRATE")->Value, "9600");
    mControl->SetupWriteFile("ram:s");
    EXPECT_THAT(TakeCommands(), ElementsAre("SETUP WRITE\"ram:s\""));
}

TEST_F(Surface, LinkAndLayerAreThereWhileTheControlRuns) {
    EXPECT_RAISED(mControl->Layer(), RtObjectNotSet);
    EXPECT_RAISED(mControl->Link(), RtObjectNotSet);
    Run();
    EXPECT_EQ(mControl->Layer().RegSettings(), mSettings);
    EXPECT_EQ(mControl->Link().Commport(), "1");
    mControl->TearDown();
    EXPECT_RAISED(mControl->Layer(), RtObjectNotSet);
    EXPECT_RAISED(mControl->Link(), RtObjectNotSet);
}

TEST_F(Surface, EveryMemberThatReachesThePrinterNeedsALink) {
    PrintFontArgs font;
    ModuleUploadArgs module;
    const std::vector<std::function<void()>> calls = {
        [&] { mControl->Files("ram:"); },
        [&] { mControl->Images(); },
        [&] { mControl->InstallImage("x"); },
        [&] { mControl->PrintImage("x"); },
        [&] { mControl->Fonts(); },
        [&] { mControl->InstallFont("x"); },
        [&] { mControl->PrintFont(font); },
        [&] { mControl->ShowCommSettings(); },
        [&] { mControl->DoAutoconnect(); },
        [&] { mControl->KillQN("x"); },
        [&] { mControl->RemoveImage("x"); },
        [&] { mControl->PrinterType(); },
        [&] { mControl->FirmwareVersion(); },
        [&] { mControl->Version(0); },
        [&] { mControl->Reboot(); },
        [&] { mControl->CopyFile("x", "y"); },
        [&] { mControl->RenameFile("x", "y"); },
        [&] { mControl->NewProgram(); },
        [&] { mControl->Fre(); },
        [&] { mControl->ModuleUpload(module); },
        [&] { mControl->PasteCB(); },
        [&] { mControl->Setup(); },
        [&] { mControl->ChangePrinterSetupItem("x", "y"); },
        [&] { mControl->UploadQNProgram("x"); },
        [&] { mControl->SetupWriteFile("x"); },
        [&] { mControl->SetupLoadFile("x"); },
        [&] { mControl->FormatDev("x"); },
        [&] { mControl->ChDir("x"); },
        [&] { mControl->DeviceUsedMem("x"); },
        [&] { mControl->DeviceFreeMem("x"); },
        [&] { mControl->ProgramLink({}); },
        [&] { mControl->RunProgram(); },
        [&] { mControl->IsProgramRunable(); },
        [&] { mControl->KermitUpload("x", "ram:y"); },
        [&] { mControl->KermitDownload("ram:x", "y"); },
        [&] { mControl->BinaryUpload("x"); },
        [&] { mControl->BinaryDownload("x"); },
    };
    for (const auto& call : calls)
        EXPECT_EQ(testing::NumberRaisedBy(call), RtObjectNotSet);
    EXPECT_EQ(mControl->ImagesCount(), 0);
}

} // namespace
} // namespace qncomm

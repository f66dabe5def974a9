#include "PrinterRig.h"
#include "platform/DurableFile.h"
#include "testing/printer/TestPictures.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include <csignal>

#include <sys/resource.h>

namespace qncomm::testing {
namespace {

class StateTest : public ::testing::Test {
  protected:
    StateTest()
        : mFolder(::testing::TempDir() + "state-" + std::to_string(::getpid()) + "-"
                  + ::testing::UnitTest::GetInstance()->current_test_info()->name()),
          mAddress("R7G?boot-ms=0&state=" + mFolder) {}
    ~StateTest() override {
        std::error_code error;
        std::filesystem::remove_all(mFolder, error);
    }
    std::string mFolder;
    std::string mAddress;
};

TEST_F(StateTest, KeepsFilesAndSetupBetweenRuns) {
    {
        PrinterRig rig(mAddress);
        EXPECT_EQ(rig.Printer().Problem(), "");
        rig.Ask("COPY \"c:PRICES.DAT\",\"card1:a b/c\":KILL \"c:PRICES.DAT\"");
        rig.Ask("COPY \"c:LAYOUT.LBL\",\"tmp:GONE\"");
        rig.Ask("SETUP\"LABEL,WIDTH,444\"");
    }
    PrinterRig again(mAddress);
    EXPECT_EQ(again.Printer().Problem(), "");
    EXPECT_TRUE(again.Lines("COPY \"card1:a b/c\",\"tmp:X\"").empty());
    EXPECT_EQ(again.Line("KILL \"c:PRICES.DAT\""), "Error 1022: File not found");
    EXPECT_EQ(again.Line("KILL \"tmp:GONE\""), "Error 1022: File not found");
    EXPECT_NE(again.Ask("FILES\"c:\",A").find("CONFIG.SYS"), std::string::npos);
    EXPECT_NE(again.Ask("SETUP WRITE\"uart1:\"").find("LABEL,WIDTH,444"), std::string::npos);
}

TEST_F(StateTest, SavingAFileTouchesNoOther) {
    {
        PrinterRig rig(mAddress);
        rig.Ask("COPY \"c:PRICES.DAT\",\"card1:A.new\"");
        rig.Ask("COPY \"c:LAYOUT.LBL\",\"card1:A\"");
    }
    PrinterRig again(mAddress);
    EXPECT_TRUE(again.Lines("COPY \"card1:A.new\",\"tmp:X\"").empty());
    EXPECT_TRUE(again.Lines("COPY \"card1:A\",\"tmp:Y\"").empty());
}

TEST_F(StateTest, WhatACrashLeavesIsNoFileOfThePrinter) {
    { const PrinterRig rig(mAddress); }
    qncomm::DurableFile unfinished;
    ASSERT_TRUE(unfinished.Create(mFolder + "/card1/f-A").Ok());
    ASSERT_TRUE(unfinished.Append("half").Ok());
    unfinished.Keep();
    PrinterRig again(mAddress);
    EXPECT_EQ(again.Printer().Problem(), "");
    EXPECT_NE(again.Ask("FILES\"card1:\",A").find(" 0 BYTES USED"), std::string::npos);
}

void LoadImage(PrinterRig& rig, const std::string& picture, const std::string& flag) {
    rig.Send("IMAGE LOAD \"LOGO\"," + std::to_string(picture.size()) + ",\"" + flag + "\"\r"
             + picture);
    EXPECT_TRUE(rig.Read().ends_with("\"\r\nOk\r\n"));
}

TEST_F(StateTest, AnImageThatIsNotKeptHidesTheKeptOneUntilARestart) {
    const std::string kept = TestPcx(30, 20);
    const std::string other = TestPcx(300, 200);
    std::string listing;
    {
        PrinterRig rig(mAddress);
        LoadImage(rig, kept, "S");
        listing = rig.Ask("IMAGES");
        LoadImage(rig, other, "");
        LoadImage(rig, TestPcx(60, 40), "");
        EXPECT_NE(rig.Ask("IMAGES"), listing);
        rig.Ask("REBOOT");
        EXPECT_EQ(rig.Ask("IMAGES"), listing) << "bytes free and used too";
        LoadImage(rig, other, "");
    }
    PrinterRig again(mAddress);
    EXPECT_EQ(again.Ask("IMAGES"), listing);
    LoadImage(again, other, "");
    again.Ask("REMOVE IMAGE \"LOGO\"");
    EXPECT_EQ(again.Lines("IMAGES").size(), 1U);
    EXPECT_EQ(PrinterRig(mAddress).Lines("IMAGES").size(), 1U);
}

TEST_F(StateTest, AnImageIsKeptUnderItsFirstNameInEitherCase) {
    {
        PrinterRig rig(mAddress);
        LoadImage(rig, TestPcx(30, 20), "S");
        rig.Ask("COPY \"c:PRICES.DAT\",\"card1:a\":COPY \"c:LAYOUT.LBL\",\"card1:A\"");
    }
    PrinterRig again(mAddress);
    EXPECT_EQ(again.Lines("FILES \"card1:\"")[1], "a                           44");
    again.Ask("KILL \"card1:A\":REMOVE IMAGE \"logo\"");
    PrinterRig third(mAddress);
    EXPECT_EQ(third.Lines("FILES \"card1:\"").size(), 2U);
    EXPECT_EQ(third.Lines("IMAGES").size(), 1U);
}

TEST_F(StateTest, KeptSetupRulesTheLine) {
    {
        PrinterRig rig(mAddress);
        rig.Ask("SETUP\"SER-COM,UART1,BAUDRATE,57600\"");
    }
    PrinterRig again(mAddress + "&baud=9600");
    LineFormat format;
    format.baud = 9600;
    again.Printer().SetHostFormat(format, again.Now());
    EXPECT_EQ(again.Ask("PRINT 1").find("Ok"), std::string::npos);
    format.baud = 57600;
    again.Printer().SetHostFormat(format, again.Now());
    again.Ask("");
    EXPECT_EQ(again.Line("PRINT 1"), "1");
}

TEST_F(StateTest, FormatReachesTheFolder) {
    {
        PrinterRig rig(mAddress);
        rig.Ask("FORMAT\"c:\",A");
    }
    PrinterRig again(mAddress);
    EXPECT_NE(again.Ask("FILES\"c:\",A").find(" 0 BYTES USED"), std::string::npos);
}

TEST_F(StateTest, DamagedFolderIsNamedAndThePrinterWorks) {
    { const PrinterRig rig(mAddress); }
    std::ofstream(mFolder + "/setup.txt") << "nonsense";
    PrinterRig again(mAddress);
    EXPECT_NE(again.Printer().Problem().find(mFolder), std::string::npos);
    EXPECT_EQ(again.Line("PRINT 1"), "1");
    PrinterRig nowhere("R7G?state=/proc/none");
    EXPECT_NE(nowhere.Printer().Problem().find("/proc/none"), std::string::npos);
}

TEST_F(StateTest, FileThatIsLargerThanAnyPrintersMemoryIsDamage) {
    { const PrinterRig rig(mAddress); }
    constexpr std::uintmax_t largest = 256U << 20U;
    std::ofstream(mFolder + "/c/f-BIG") << "10 PRINT 1\r\n";
    EXPECT_EQ(PrinterRig(mAddress).Printer().Problem(), "");
    std::filesystem::resize_file(mFolder + "/c/f-BIG", largest + 1); // a hole
    PrinterRig again(mAddress);
    EXPECT_NE(again.Printer().Problem().find(mFolder), std::string::npos);
    EXPECT_EQ(again.Line("PRINT 1"), "1");
}

/// The folder's disk is full, as far as this process is concerned, while it lives.
class NoRoomForFiles {
  public:
    NoRoomForFiles() {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &mFormer), 0);
        mSignal = ::signal(SIGXFSZ, SIG_IGN);
        const rlimit none{0, mFormer.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
    }
    ~NoRoomForFiles() {
        ::setrlimit(RLIMIT_FSIZE, &mFormer);
        ::signal(SIGXFSZ, mSignal);
    }
    NoRoomForFiles(const NoRoomForFiles&) = delete;
    NoRoomForFiles& operator=(const NoRoomForFiles&) = delete;

  private:
    rlimit mFormer{};
    void (*mSignal)(int) = nullptr;
};

TEST_F(StateTest, WhatCannotBeKeptIsThePrintersErrorAndChangesNothing) {
    PrinterRig rig(mAddress);
    rig.Ask("10 PRINT 1");
    rig.Ask("SAVE\"c:A.PRG\"");
    const std::string before = rig.Ask("FILES\"c:\"");
    {
        const NoRoomForFiles full;
        EXPECT_NE(rig.Ask("SAVE\"c:B.PRG\"").find("Device full"), std::string::npos);
        rig.Ask("20 PRINT 2");
        EXPECT_NE(rig.Ask("SAVE\"c:A.PRG\"").find("Device full"), std::string::npos);
        EXPECT_EQ(rig.Ask("FILES\"c:\""), before);
    }
    PrinterRig again(mAddress);
    EXPECT_EQ(again.Ask("FILES\"c:\""), before) << "and so does the folder";
}

} // namespace
} // namespace qncomm::testing

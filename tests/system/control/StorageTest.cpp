// The printer's storage through the control: what a device holds, and what copying, renaming,
// deleting and formatting make of it.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Storage : public AssembledFixture {
  protected:
    ~Storage() override { EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault); }
};

TEST_F(Storage, AListIsReadOnceAndThenKeptWithoutAByteOnTheLine) {
    const auto files = Control().Files("C");
    EXPECT_THAT(NamesOf(files), ElementsAre("LAYOUT.LBL", "PRICES.DAT", "STARTUP.PRG"));
    EXPECT_EQ(files->Item("prices.dat")->Size, 34);
    TakeSent();
    EXPECT_EQ(Control().Files("c:"), files);
    EXPECT_EQ(TakeSent(), "");
    EXPECT_EQ(NamesOf(Control().Files("c:", true)), NamesOf(files));
    EXPECT_THAT(TakeCommands(), ElementsAre("FILES\"c:\""));
}

TEST_F(Storage, SystemFilesAreListedWhenAskedFor) {
    EXPECT_THAT(FilesOn("c:"), Not(Contains("CONFIG.SYS")));
    EXPECT_THAT(FilesOn("c:", true), Contains("CONFIG.SYS"));
}

TEST_F(Storage, AWriteMakesTheKeptListOutOfDate) {
    Control().Files("c:");
    Control().CopyFile("c:PRICES.DAT", "c:COPY.DAT");
    EXPECT_EQ(Control().Files("c:")->Item("COPY.DAT")->Size, 34);
    Control().KillQN("c:COPY.DAT");
    EXPECT_THAT(NamesOf(Control().Files("c:")), Not(Contains("COPY.DAT")));
    TakeSent();
    Control().Files("c:");
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Storage, AFileIsCopiedRenamedAcrossDevicesAndDeleted) {
    Control().CopyFile("c:PRICES.DAT", "tmp:P.DAT");
    EXPECT_THAT(FilesOn("tmp:"), ElementsAre("P.DAT"));
    Control().RenameFile("tmp:P.DAT", "c:Q.DAT");
    EXPECT_THAT(FilesOn("tmp:"), IsEmpty());
    EXPECT_EQ(Control().Files("c:", true)->Item("Q.DAT")->Size, 34);
    Control().KillQN("c:Q.DAT");
    EXPECT_THAT(FilesOn("c:"), Not(Contains("Q.DAT")));
    EXPECT_EQ(NumberRaisedBy([&] { Control().KillQN("c:Q.DAT"); }), 61022);
    EXPECT_EQ(NumberRaisedBy([&] { Control().CopyFile("c:NONE", "tmp:X"); }), 61022);
    EXPECT_EQ(NumberRaisedBy([&] { Control().RenameFile("c:PRICES.DAT", "rom:X"); }), 61020);
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
}

TEST_F(Storage, ABareNameIsOnTheDeviceThatWasMadeCurrent) {
    Control().ChDir("tmp:");
    Control().CopyFile("c:PRICES.DAT", "HERE.DAT");
    EXPECT_THAT(FilesOn("tmp:"), ElementsAre("HERE.DAT"));
    EXPECT_EQ(RaisedBy([&] { Control().ChDir("ram:"); }), "1010 clsQuorin:IsValidPrinterDevice");
    Control().KillQN("HERE.DAT");
    EXPECT_THAT(FilesOn("tmp:"), IsEmpty()) << "the refused device did not become current";
}

TEST_F(Storage, FormattingErasesADeviceAndItsSystemFilesOnlyWhenAskedTo) {
    Control().FormatDev("c:");
    EXPECT_THAT(FilesOn("c:"), IsEmpty());
    EXPECT_THAT(FilesOn("c:", true), ElementsAre("CONFIG.SYS", "ERRORS.SYS"));
    Control().FormatDev("c:", true);
    EXPECT_THAT(FilesOn("c:", true), IsEmpty());
    EXPECT_EQ(NumberRaisedBy([&] { Control().FormatDev("rom:"); }), 61020);
}

TEST_F(Storage, MemoryIsWhatTheLastListingSaid) {
    EXPECT_EQ(NumberRaisedBy([&] { Control().DeviceUsedMem("c:"); }), RtInvalidCall);
    Control().Files("c:");
    const std::string used = Control().DeviceUsedMem("c:");
    const int free = std::stoi(Control().DeviceFreeMem("C:"));
    Control().CopyFile("c:PRICES.DAT", "c:COPY.DAT");
    EXPECT_EQ(Control().DeviceUsedMem("c:"), used) << "no listing, nothing new";
    TakeSent();
    EXPECT_EQ(NumberRaisedBy([&] { Control().DeviceFreeMem("c"); }), RtInvalidCall);
    EXPECT_EQ(TakeSent(), "");
    Control().Files("c:");
    EXPECT_EQ(Control().DeviceUsedMem("C:"), std::to_string(std::stoi(used) + 34));
    EXPECT_EQ(Control().DeviceFreeMem("c:"), std::to_string(free - 34));
}

TEST_F(Storage, ADeviceThatTheModelLacksIsRefused) {
    EXPECT_EQ(RaisedBy([&] { Control().Files("ram:"); }), "1010 clsQuorin:IsValidPrinterDevice");
    EXPECT_EQ(RaisedBy([&] { Control().Files("ram: "); }), "1018 QNComm:Files");
    EXPECT_EQ(RaisedBy([&] { Control().Files("fonts:"); }), "1018 QNComm:Files");
    Assemble("sim:R7A");
    EXPECT_THAT(NamesOf(Control().Files("RAM")), Contains("PRICES.DAT"));
    EXPECT_EQ(RaisedBy([&] { Control().Files("tmp:"); }), "1010 clsQuorin:IsValidPrinterDevice");
}

TEST_F(Storage, AModelWithoutListingsSaysSoTwiceARead) {
    Assemble("sim:R7C");
    EXPECT_TRUE(Control().Files("card2:")->IsEmpty());
    ASSERT_EQ(mDesktop.mBoxes.size(), 2U);
    EXPECT_THAT(mDesktop.mBoxes[0].text, HasSubstr("R7C"));
}

TEST_F(Storage, WhileTheHourglassShowsThereIsNoListAndNoByte) {
    Control().PrinterType();
    TakeSent();
    Pointer::Screen().Set(PointerHourglass);
    EXPECT_EQ(Control().Files("c:"), nullptr);
    EXPECT_EQ(TakeSent(), "");
    Pointer::Screen().Set(PointerDefault);
    EXPECT_NE(Control().Files("c:"), nullptr);
}

TEST_F(Storage, AFullDeviceRaisesThePrintersErrorAndKeepsWhatItHad) {
    Assemble("sim:R7G?capacity=250");
    for (int copies = 0; copies < 9; ++copies) {
        const std::string name = "c:COPY" + std::to_string(copies) + ".DAT";
        if (NumberRaisedBy([&] { Control().CopyFile("c:PRICES.DAT", name); }) == 61019) break;
    }
    EXPECT_LT(std::stoi((Control().Files("c:"), Control().DeviceFreeMem("c:"))), 34);
    EXPECT_THAT(NamesOf(Control().Files("c:")), Contains("COPY0.DAT"));
}

} // namespace
} // namespace qncomm::testing

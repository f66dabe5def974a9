#include "PrinterFixture.h"

namespace qncomm::testing {
namespace {

using Files = PrinterFixture;

const Lines SomeFiles{"FILES ON RAM:", "A.PRG  10", "B.PRG  20      C.DAT  30",
                      "1000 BYTES FREE  60 BYTES USED"};

TEST_F(Files, SendsTheNameInLowerCaseWithoutABlankAndFillsItsDevice) {
    ScriptIdentity("R7A");
    Script("FILES\"ram:\"", SomeFiles);
    std::string device = "RAM:";
    mQuorin.Files(device);
    EXPECT_EQ(device, "ram:");
    const clsPrinterDevice& ram = Device("ram:");
    EXPECT_THAT(Listed(*ram.Files), ElementsAre("A.PRG 10", "B.PRG 20", "C.DAT 30"));
    EXPECT_EQ(ram.BytesFree, 1000);
    EXPECT_EQ(ram.BytesUsed, 60);
    EXPECT_FALSE(ram.Dirty);
    EXPECT_EQ(ram.Files->Item("c.dat")->Size, 30);
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Files, EveryCallAsksThePrinterAnew) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device, false);
    const auto first = Device("ram:").Files;
    Script("FILES\"ram:\"", {"FILES ON RAM:", "1 BYTES FREE  2 BYTES USED"});
    mQuorin.Files(device, true);
    EXPECT_EQ(Device("ram:").Files->Count(), 0U);
    EXPECT_EQ(first->Count(), 3U) << "a listing that the host holds stays as it was";
}

TEST_F(Files, SystemFilesAreAskedForOnExtendedModelsOnly) {
    std::string card = "card1:";
    Know("R7EZV");
    Script("FILES\"card1:\",A", SomeFiles);
    mQuorin.Files(card, false, true);
    Script("FILES\"card1:\"", SomeFiles);
    mQuorin.Files(card, false, false);
    Reconnect("R7A");
    Script("FILES\"card1:\"", SomeFiles);
    mQuorin.Files(card, false, true);
}

TEST_F(Files, APathIsAskedForAndThenBelongsToNoDevice) {
    Know("R7A");
    for (std::string path : {"ram:x", "ram: "}) {
        Script("FILES\"" + path + "\"", SomeFiles);
        EXPECT_RAISED(mQuorin.Files(path), RtInvalidCall) << path;
    }
    EXPECT_TRUE(Device("ram:").Files->IsEmpty());
}

TEST_F(Files, ARefusedPortLeavesTheDeviceAsItWas) {
    KnowCleanDevices("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device);
    const auto before = Device("ram:").Files;
    RefusePort();
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").Files, before);
    EXPECT_THAT(mDesktop.mLog, ElementsAre("port not available"));
    GrantPort();
}

TEST_F(Files, WithoutAHeaderTheListIsEmptyAndTheCountsStay) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device);
    Script("FILES\"ram:\"", {"LISTING OF RAM:", "A.PRG  10", "7 BYTES FREE  8 BYTES USED"});
    Device("ram:").Dirty = true;
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").Files->Count(), 0U);
    EXPECT_EQ(Device("ram:").BytesFree, 1000);
    EXPECT_FALSE(Device("ram:").Dirty);
}

TEST_F(Files, AHeaderInTheMiddleOfItsLineGivesTheCountsAlone) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", {"All files on ram:", "A.PRG  10", "7 BYTES FREE  8 BYTES USED"});
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").Files->Count(), 0U);
    EXPECT_EQ(Device("ram:").BytesFree, 7);
    EXPECT_EQ(Device("ram:").BytesUsed, 8);
}

TEST_F(Files, AHeaderIsReadInAnyCase) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", {"Files on ram:", "A.PRG  10", "7 Bytes free  8 Bytes used"});
    mQuorin.Files(device);
    EXPECT_THAT(Listed(*Device("ram:").Files), ElementsAre("A.PRG 10"));
}

TEST_F(Files, ALineWithoutByteCountsLeavesTheCounts) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device);
    Script("FILES\"ram:\"", {"FILES ON RAM:", "A.PRG  10", "and that is all"});
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").BytesFree, 1000);
    EXPECT_EQ(Device("ram:").BytesUsed, 60);
    Script("FILES\"ram:\"", {"FILES ON RAM:"});
    mQuorin.Files(device);
    Script("FILES\"ram:\"");
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").BytesFree, 1000);
}

TEST_F(Files, RowsThatCannotBeToldApartShowOneBoxAndTheOthersAreListed) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"",
           {"FILES ON RAM:", "A  B.PRG  10", "C.PRG  20", "LONE", "1 BYTES FREE  2 BYTES USED"});
    mQuorin.Files(device);
    EXPECT_THAT(Listed(*Device("ram:").Files), ElementsAre("C.PRG 20"));
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Dubble white spaces are used as part \r\n"
                                       "of a filename on printer PrinterDevice 'ram:'.\r\n"
                                       "Can\xC2\xB4t show all files!\r\n(2 rows)");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::Ok);
    EXPECT_EQ(mDesktop.mBoxes[0].title, "");
}

TEST_F(Files, ACancelIsHeardInTheMiddleOfManyRowsAndTheListingStays) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device);
    const auto before = Device("ram:").Files;
    Lines rows{"FILES ON RAM:"};
    for (int row = 0; row < 10'000; ++row)
        rows.push_back("F" + std::to_string(row) + "  1");
    rows.emplace_back("1 BYTES FREE  2 BYTES USED");
    Script("FILES\"ram:\"", rows);
    const CancelOnceThePortIsGivenBack cancel(mLoop, mLink);
    EXPECT_THROW(mQuorin.Files(device), OperationCancelled);
    EXPECT_EQ(Device("ram:").Files, before);
}

TEST_F(Files, ANameListedTwiceIsKeptOnce) {
    Know("R7A");
    std::string device = "ram:";
    Script("FILES\"ram:\"",
           {"FILES ON RAM:", "A.PRG  10", "a.prg  11    B.PRG  20", "1 BYTES FREE  2 BYTES USED"});
    mQuorin.Files(device);
    EXPECT_THAT(Listed(*Device("ram:").Files), ElementsAre("A.PRG 10", "B.PRG 20"));
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Files, AModelWithoutListingSaysSoAndLeavesTheDevice) {
    Know("R7C");
    std::string device = "card2:";
    Script("FILES\"card2:\"", SomeFiles);
    mQuorin.Files(device);
    EXPECT_TRUE(Device("card2:").Dirty);
    EXPECT_EQ(Device("card2:").Files->Count(), 0U);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "File not implemented for the R7C printer.");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::None);
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::Ok);
}

TEST_F(Files, AModelThatBecameUnknownIsNotListed) {
    KnowCleanDevices("R7A");
    Reconnect("R9Z");
    const auto before = Device("ram:").Files;
    std::string device = "ram:";
    Script("FILES\"ram:\"", SomeFiles);
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").Files, before);
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Files, APrinterErrorIsRaisedAndTheListingStays) {
    KnowCleanDevices("R7A");
    std::string device = "card1:";
    const auto before = Device("card1:").Files;
    Script("FILES\"card1:\"", {"Error 1031: Device not ready"});
    EXPECT_RAISED_FROM(mQuorin.Files(device), "61031 clsDatalink:GetPrinterError");
    EXPECT_EQ(Device("card1:").Files, before);
}

TEST_F(Files, AListingLongerThanTheUsualArrivesWhole) {
    Know("R7A");
    Lines reply{"FILES ON RAM:"};
    for (int i = 0; i < 500; ++i)
        reply.push_back("F" + std::to_string(i) + ".PRG  " + std::to_string(i));
    reply.emplace_back("1 BYTES FREE  2 BYTES USED");
    Script("FILES\"ram:\"", reply);
    std::string device = "ram:";
    mQuorin.Files(device);
    EXPECT_EQ(Device("ram:").Files->Count(), 500U);
    EXPECT_EQ(Device("ram:").Files->Item(500)->Name, "F499.PRG");
}

TEST_F(Files, AFileIsLookedForInAListingThatIsReadWhenItIsOutOfDate) {
    Know("R7A");
    Script("FILES\"ram:\"", SomeFiles);
    EXPECT_TRUE(mQuorin.PrinterFileExists("ram:b.prg"));
    EXPECT_FALSE(mQuorin.PrinterFileExists("RAM:D.PRG"));
    Device("ram:").Dirty = true;
    Script("FILES\"ram:\"", {"FILES ON RAM:", "1 BYTES FREE  2 BYTES USED"});
    EXPECT_FALSE(mQuorin.PrinterFileExists("ram:b.prg"));
    EXPECT_RAISED(mQuorin.PrinterFileExists("c:b.prg"), ErrDeviceName);
    EXPECT_RAISED(mQuorin.PrinterFileExists("b.prg"), ErrDeviceName);
    Script("FONTS", {"MS030RMN.1", "1 BYTES FREE  2 BYTES USED"});
    EXPECT_TRUE(mQuorin.PrinterFileExists("fonts:ms030rmn.1"));
    Script("IMAGES", {"LOGO.PCX  12", "1 BYTES FREE  2 BYTES USED"});
    EXPECT_TRUE(mQuorin.PrinterFileExists("Images:LOGO.PCX"));
}

} // namespace
} // namespace qncomm::testing

#include "PrinterFixture.h"

namespace qncomm::testing {
namespace {

using DeviceTable = PrinterFixture;

const Lines AllDevices{"ram:", "rom:", "card1:", "card2:", "c:", "tmp:", "fonts:", "images:"};

TEST_F(DeviceTable, IsEmptyUntilItIsNeeded) {
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
}

TEST_F(DeviceTable, HoldsEightDevicesInOrderAllDirty) {
    ScriptIdentity("R7A");
    Script("Chdir\"ram:\"");
    mQuorin.ChDir("ram:");
    EXPECT_EQ(DirtyDevices(), AllDevices);
    EXPECT_EQ(mQuorin.PrinterDevices()->Item("CARD1:")->Name, "card1:");
}

TEST_F(DeviceTable, HoldsAnUnknownModelWithoutAnyValidDevice) {
    ScriptIdentity("r7a");
    EXPECT_RAISED_FROM(mQuorin.ChDir("ram:"), "1009 clsQuorin:InitFileSystem");
    EXPECT_EQ(DirtyDevices(), AllDevices);
    EXPECT_THAT(ValidDevices(), IsEmpty());
    EXPECT_RAISED_FROM(mQuorin.ChDir("ram:"), "1010 clsQuorin:IsValidPrinterDevice");
}

TEST_F(DeviceTable, IsBuiltAgainWhenItWasBuiltWithoutAPrinter) {
    RefusePort();
    EXPECT_RAISED_FROM(mQuorin.ChDir("ram:"), "1009 clsQuorin:InitFileSystem");
    EXPECT_EQ(DirtyDevices(), AllDevices);
    EXPECT_THAT(ValidDevices(), IsEmpty());
    GrantPort();
    ScriptIdentity("R7D");
    Script("Chdir\"ram:\"");
    mQuorin.ChDir("ram:");
    EXPECT_THAT(ValidDevices(), ElementsAre("ram:", "rom:"));
}

TEST_F(DeviceTable, IsBuiltAgainWhenTheModelCouldNotBeRead) {
    mSerial.Handshake().Exchange("PRINT VERSION$(0):PRINT VERSION$(1)", {"one line"});
    EXPECT_RAISED_FROM(mQuorin.ChDir("ram:"), "1000 Datalink:GetVersion");
    EXPECT_THAT(ValidDevices(), IsEmpty());
    mLink.SetImmediateMode(true);
    ScriptIdentity("R7D");
    Script("Chdir\"ram:\"");
    mQuorin.ChDir("ram:");
    EXPECT_THAT(ValidDevices(), ElementsAre("ram:", "rom:"));
}

TEST_F(DeviceTable, StaysWhenAnotherModelIsConnected) {
    Know("R7D");
    Script("Chdir\"ram:\"");
    mQuorin.ChDir("ram:");
    Reconnect("R7G");
    EXPECT_RAISED(mQuorin.ChDir("c:"), ErrDeviceName);
    EXPECT_THAT(ValidDevices(), ElementsAre("ram:", "rom:"));
}

TEST_F(DeviceTable, NamesInAnyCaseAndPathsNameTheirDevice) {
    Know("R7A");
    Script("Chdir\" RAM:X\"");
    mQuorin.ChDir(" RAM:X");
}

TEST_F(DeviceTable, ANameThatIsNoDeviceIsRefusedBeforeAnythingIsSent) {
    Know("R7G");
    for (const char* name : {"ram", "", ":", "ram:", "disk:", "fonts:", "images:", "card2:"})
        EXPECT_RAISED_FROM(mQuorin.ChDir(name), "1010 clsQuorin:IsValidPrinterDevice") << name;
}

TEST_F(DeviceTable, MayBeReplacedByTheHost) {
    auto own = std::make_shared<PrinterDeviceTable>();
    auto ram = std::make_shared<clsPrinterDevice>();
    ram->Name = "ram:";
    ram->Valid = true;
    own->Add(ram, "ram:");
    mQuorin.SetPrinterDevices(own);
    Script("Chdir\"ram:\"");
    mQuorin.ChDir("ram:");
    EXPECT_EQ(mQuorin.PrinterDevices(), own);
    mQuorin.SetPrinterDevices(nullptr);
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
}

struct ModelRow {
    const char* code;
    Lines valid;
};

class DevicesOfModel : public PrinterFixture, public ::testing::WithParamInterface<ModelRow> {};

TEST_P(DevicesOfModel, AreValid) {
    ScriptIdentity(GetParam().code);
    Script("Chdir\"rom:\"");
    mQuorin.ChDir("rom:");
    EXPECT_EQ(ValidDevices(), GetParam().valid);
}

TEST_P(DevicesOfModel, AreNamedWithTheReadOnlyOnesLast) {
    Know(GetParam().code);
    mSerial.mSent.clear();
    const Lines devices = mQuorin.Devices();
    EXPECT_THAT(devices, ::testing::UnorderedElementsAreArray(GetParam().valid));
    EXPECT_EQ(devices.back(), "rom:");
    EXPECT_EQ(ValidDevices(), GetParam().valid) << "the table is filled";
    EXPECT_EQ(mSerial.mSent, "") << "a known model is not asked for";
}

TEST_P(DevicesOfModel, CanBeListedOnEveryModelButOne) {
    ScriptIdentity(GetParam().code);
    EXPECT_EQ(mQuorin.CanList(), std::string_view(GetParam().code) != "R7C");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(DeviceTable, NamesWhereWorkIsDoneFirstAndCardsBeforeReadOnlyStorage) {
    Know("R7G");
    EXPECT_THAT(mQuorin.Devices(), ElementsAre("c:", "tmp:", "card1:", "rom:"));
    Reconnect("R7A");
    EXPECT_THAT(mQuorin.Devices(), ElementsAre("c:", "tmp:", "card1:", "rom:"))
        << "the table stays, and what it says with it";
    mQuorin.SetPrinterDevices(nullptr);
    EXPECT_THAT(mQuorin.Devices(), ElementsAre("ram:", "card1:", "rom:"));
}

TEST_F(DeviceTable, NamesNoDeviceOfAnUnknownModelNorOfARefusedPort) {
    RefusePort();
    EXPECT_RAISED_FROM(mQuorin.Devices(), "1009 clsQuorin:InitFileSystem");
    EXPECT_TRUE(mQuorin.CanList()) << "the listing says what is wrong";
    GrantPort();
    Know("r7c");
    EXPECT_RAISED_FROM(mQuorin.Devices(), "1009 clsQuorin:InitFileSystem");
    EXPECT_TRUE(mQuorin.CanList());
}

const Lines OneCard{"ram:", "rom:", "card1:"};
const Lines Extended{"rom:", "card1:", "c:", "tmp:"};

INSTANTIATE_TEST_SUITE_P(Models, DevicesOfModel,
                         ::testing::Values(ModelRow{"R7A", OneCard}, ModelRow{"R7B", OneCard},
                                           ModelRow{"R7E", OneCard}, ModelRow{"R7F", OneCard},
                                           ModelRow{"R7C", {"ram:", "rom:", "card1:", "card2:"}},
                                           ModelRow{"R7D", {"ram:", "rom:"}},
                                           ModelRow{"R7EZV", Extended}, ModelRow{"R7FZV", Extended},
                                           ModelRow{"R7G", Extended}, ModelRow{"R7H", Extended}),
                         [](const auto& row) { return std::string(row.param.code); });

// -- Marking a device dirty, as every operation that changes one does

TEST_F(DeviceTable, ADirtyMarkIgnoresWhetherTheModelHasTheDevice) {
    KnowCleanDevices("R7G");
    Script("KILL \"CARD2:X\"");
    const std::string name = "CARD2:X";
    mQuorin.Kill(name);
    EXPECT_THAT(DirtyDevices(), ElementsAre("card2:"));
    EXPECT_EQ(name, "CARD2:X");
}

TEST_F(DeviceTable, ADirtyMarkForABareNameAsksForTheCurrentDevice) {
    KnowCleanDevices("R7G");
    Script("KILL \"X\"");
    Script("FILES \".\"", {"FILES ON C:", "1 BYTES FREE 2 BYTES USED"});
    mQuorin.Kill("X");
    EXPECT_THAT(DirtyDevices(), ElementsAre("c:"));
}

TEST_F(DeviceTable, TheCurrentDeviceMayTakeThreeSecondsToTell) {
    KnowCleanDevices("R7G");
    Script("KILL \"X\"");
    mSerial.Handshake().Expect("FILES \".\"\r\n").Reply("FILES \".\"\r\nc:\r\nOk\r\n", 2900);
    mQuorin.Kill("X");
    Script("KILL \"X\"");
    mSerial.Handshake().Expect("FILES \".\"\r\n");
    EXPECT_RAISED(mQuorin.Kill("X"), ErrInputTimeout);
}

TEST_F(DeviceTable, ADirtyMarkWithoutAnyDeviceRaises) {
    KnowCleanDevices("R7G");
    Script("KILL \"X\"");
    Script("FILES \".\"", {"nothing to see"});
    EXPECT_RAISED_FROM(mQuorin.Kill("X"), "1010 clsQuorin:SetDeviceDirty");
    Script("KILL \"disk:X\"");
    EXPECT_RAISED_FROM(mQuorin.Kill("disk:X"), "1010 clsQuorin:SetDeviceDirty");
    EXPECT_THAT(DirtyDevices(), IsEmpty());
}

} // namespace
} // namespace qncomm::testing

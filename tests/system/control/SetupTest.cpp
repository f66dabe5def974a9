// The printer's setup through the control.

#include "testing/stack/AssembledFixture.h"

#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SetupDialogue : public AssembledFixture {
  protected:
    std::string Value(const std::string& key) { return Control().Setup()->Item(key)->Value; }
};

TEST_F(SetupDialogue, AllItemsAreReadInTheirOrder) {
    const auto setup = Control().Setup();
    EXPECT_EQ(setup->Item("SER-COM,UART1,BAUDRATE")->Value, "9600");
    EXPECT_EQ(setup->Item("SER-COM,UART1,CHAR LENGTH")->Value, "8");
    EXPECT_EQ(setup->Item("SYSTEM,MODEL")->Value, "R7G");
    EXPECT_GT(setup->Count(), 10U);
    EXPECT_NE(setup->Item(1)->Key, "");
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
}

TEST_F(SetupDialogue, AnItemIsChangedOnThePrinter) {
    const auto before = Control().Setup();
    Control().ChangePrinterSetupItem("label,width", "800");
    EXPECT_EQ(Value("LABEL,WIDTH"), "800");
    EXPECT_NE(before->Item("LABEL,WIDTH")->Value, "800") << "a list in hand stays as it was read";
    EXPECT_EQ(NumberRaisedBy([&] { Control().ChangePrinterSetupItem("LABEL,WIDTH", "wide"); }),
              61031);
    EXPECT_EQ(NumberRaisedBy([&] { Control().ChangePrinterSetupItem("LABEL,COLOUR", "1"); }),
              61030);
    EXPECT_EQ(Value("LABEL,WIDTH"), "800");
}

TEST_F(SetupDialogue, ASetupIsWrittenToAFileOfThePrinterAndLoadedFromIt) {
    const std::string factory = Value("LABEL,WIDTH");
    Control().SetupWriteFile("tmp:S.SET");
    EXPECT_THAT(FilesOn("tmp:"), ElementsAre("S.SET"));
    Control().ChangePrinterSetupItem("LABEL,WIDTH", "640");
    Control().SetupLoadFile("tmp:S.SET");
    EXPECT_EQ(Value("LABEL,WIDTH"), factory);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetupLoadFile("tmp:NONE.SET"); }), 61022);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetupWriteFile("rom:S.SET"); }), 61020);
}

TEST_F(SetupDialogue, ASetupSurvivesARestart) {
    Control().ChangePrinterSetupItem("LABEL,WIDTH", "640");
    Control().Reboot();
    EXPECT_EQ(Value("LABEL,WIDTH"), "640");
}

TEST_F(SetupDialogue, AChangedRateOfTheLineIsFoundAgain) {
    Control().ChangePrinterSetupItem("SER-COM,UART1,BAUDRATE", "19200");
    EXPECT_TRUE(Control().DoAutoconnect());
    EXPECT_EQ(mSettings->ReadValue("Settings", "Baudrate", ""), "19200");
    EXPECT_EQ(Value("SER-COM,UART1,BAUDRATE"), "19200");
}

} // namespace
} // namespace qncomm::testing

// The command layer on a driven clock: its suite, and what differs between models and settings.

#include "testing/core/ExpectRaised.h"
#include "testing/stack/LayerFixture.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

INSTANTIATE_TEST_SUITE_P(Line, Layer, ::testing::Values(LineInProcess()), NameOfLine);

class LayerAfterReboot : public LayerFixture {
  protected:
    LayerAfterReboot() : LayerFixture("R7G?boot-ms=4000") {}
};

TEST_F(LayerAfterReboot, HasANewDeviceTable) {
    FilesOn("c:");
    mQuorin.Reboot();
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
    FilesOn("c:");
    EXPECT_EQ(mQuorin.PrinterDevices()->Count(), 8U);
}

class LayerOnSevenBits : public LayerFixture, public ::testing::WithParamInterface<const char*> {
  protected:
    LayerOnSevenBits() : LayerFixture(std::string("R7G?format=") + GetParam()) {}
};

TEST_P(LayerOnSevenBits, TheLineIsAdjustedForAnImage) {
    const std::string path = mFolder.Write("logo.pcx", SmallPcx());
    mStack.mDesktop.mAnswers = {MsgBoxResult::No, MsgBoxResult::Yes};
    EXPECT_RAISED(mQuorin.InstallImage(path), 1014);
    mQuorin.InstallImage(path);
    EXPECT_EQ(mStack.mLink.Databits(), "8");
    EXPECT_EQ(SetupValue("SER-COM,UART1,CHAR LENGTH"), "8");
    mQuorin.Images();
    EXPECT_THAT(Names("images:"), Contains("LOGO.PCX"));
}

// With one stop bit the printer ends up at a format that is in no list of the search: a receiver
// looks at one stop bit, so it is found at the format with two.
INSTANTIATE_TEST_SUITE_P(Formats, LayerOnSevenBits, ::testing::Values("n,7,2", "n,7,1"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::erase(name, ',');
                             return name;
                         });

class LayerWithoutListing : public LayerFixture {
  protected:
    LayerWithoutListing() : LayerFixture("R7C") {}
};

TEST_F(LayerWithoutListing, SaysSo) {
    EXPECT_THAT(FilesOn("card2:"), IsEmpty());
    mQuorin.Images();
    EXPECT_THAT(Names("images:"), IsEmpty());
    ASSERT_EQ(mStack.mDesktop.mBoxes.size(), 2U);
    EXPECT_THAT(mStack.mDesktop.mBoxes[0].text, HasSubstr("R7C"));
}

struct ModelRow {
    const char* code;
    const char* device; ///< one that it has
};

class LayerOnModel : public LayerFixture, public ::testing::WithParamInterface<ModelRow> {
  protected:
    LayerOnModel() : LayerFixture(GetParam().code) {}
};

TEST_P(LayerOnModel, ListsItsFilesInItsColumns) {
    const std::string device = GetParam().device;
    for (const char* name : {"A.PRG", "B.PRG", "C.PRG"})
        EXPECT_TRUE(Upload(device + name, "10 END")->IsEmpty());
    const Lines listed = FilesOn(device);
    EXPECT_THAT(mStack.mDesktop.mBoxes, IsEmpty());
    for (const char* name : {"A.PRG", "B.PRG", "C.PRG"})
        EXPECT_THAT(listed, Contains(name));
    EXPECT_GT(mQuorin.PrinterDevices()->Item(device)->BytesFree, 0);
    EXPECT_GT(mQuorin.PrinterDevices()->Item(device)->BytesUsed, 0);
    mQuorin.FormatPrinterDevice(device);
    EXPECT_THAT(FilesOn(device), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Models, LayerOnModel,
                         ::testing::Values(ModelRow{"R7A", "ram:"}, ModelRow{"R7B", "card1:"},
                                           ModelRow{"R7D", "ram:"}, ModelRow{"R7E", "ram:"},
                                           ModelRow{"R7F", "card1:"}, ModelRow{"R7EZV", "c:"},
                                           ModelRow{"R7FZV", "tmp:"}, ModelRow{"R7G", "card1:"},
                                           ModelRow{"R7H", "c:"}),
                         [](const auto& row) { return std::string(row.param.code); });

} // namespace
} // namespace qncomm::testing

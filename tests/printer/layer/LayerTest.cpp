// The command layer on the virtual printer, the whole way down on a driven clock: what the printer
// really answers to each operation.

#include "printer/clsQuorin.h"
#include "support/ExpectRaised.h"
#include "support/ManualReactor.h"
#include "support/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace qncomm::testing {
namespace {

using Lines = std::vector<std::string>;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Layer : public ::testing::Test {
  protected:
    explicit Layer(const std::string& address = "sim:R7G?boot-ms=4000")
        : mStack(mReactor, address) {
        std::random_device random;
        mFolder =
            std::filesystem::temp_directory_path() / ("qncomm-layer-" + std::to_string(random()));
        std::filesystem::create_directory(mFolder);
    }
    ~Layer() override {
        EXPECT_EQ(mStack.mLink.UseCount(), 0);
        EXPECT_FALSE(mStack.mSerial.PortOpen());
        std::filesystem::remove_all(mFolder);
    }

    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = (mFolder / name).string();
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(mFolder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    Lines Names(const std::string& device) {
        Lines names;
        for (const auto& file : *mQuorin.PrinterDevices()->Item(device)->Files)
            names.push_back(file->Name);
        return names;
    }
    Lines FilesOn(std::string device, bool system = false) {
        mQuorin.Files(device, true, system);
        return Names(device);
    }
    std::shared_ptr<ModuleErrors> Upload(const std::string& target, std::string text) {
        std::string path = target;
        return mQuorin.ModuleUpload("", path, text);
    }
    std::string SetupValue(const std::string& key) {
        mQuorin.GetSetup();
        return mQuorin.PrinterSetupItems()->Item(key)->Value;
    }

    std::filesystem::path mFolder;
    ManualReactor mReactor;
    Stack mStack;
    clsQuorin mQuorin{mStack.mLink, mStack.mDesktop};
};

TEST_F(Layer, ListsCopiesRenamesAndDeletes) {
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

TEST_F(Layer, ABareNameIsOnTheCurrentDevice) {
    mQuorin.ChDir("tmp:");
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 END")->IsEmpty());
    FilesOn("tmp:");
    mQuorin.Kill("A.PRG");
    EXPECT_TRUE(mQuorin.PrinterDevices()->Item("tmp:")->Dirty);
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("A.PRG")));
}

TEST_F(Layer, ListsSystemFilesWhenAskedTo) {
    const Lines plain = FilesOn("c:");
    const Lines all = FilesOn("c:", true);
    EXPECT_GT(all.size(), plain.size());
}

TEST_F(Layer, FormatsADevice) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 END")->IsEmpty());
    mQuorin.FormatPrinterDevice("tmp:");
    EXPECT_THAT(FilesOn("tmp:"), IsEmpty());
}

TEST_F(Layer, RunsChecksAndFetchesTheProgram) {
    EXPECT_GT(mQuorin.Fre(), 0);
    mQuorin.NewProgram();
    EXPECT_TRUE(mQuorin.IsProgramRunable());
    EXPECT_TRUE(Upload("tmp:A.PRG", "10 PRINT \"a program\"\r\n20 END")->IsEmpty());
    EXPECT_TRUE(mQuorin.IsProgramRunable());
    mQuorin.RunProgram();
    EXPECT_GT(mQuorin.Fre(), 0) << "what the program printed is no reply";
    mQuorin.UploadQNProgram((mFolder / "a.lst").string());
    EXPECT_EQ(Read("a.lst"), "10 PRINT \"a program\"\r\n20 END\r\n");
    EXPECT_THAT(mStack.mDesktop.mBoxes, IsEmpty());
}

TEST_F(Layer, AProgramWithALine1IsRunAndNotChecked) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "1 REM first\r\n20 END")->IsEmpty());
    EXPECT_FALSE(mQuorin.IsProgramRunable());
    mQuorin.RunProgram();
    mQuorin.UploadQNProgram((mFolder / "a.lst").string());
    EXPECT_EQ(Read("a.lst"), "1 REM first\r\n20 END\r\n");
}

TEST_F(Layer, AModuleWithErrorsIsNotSavedAndItsErrorsNameTheirLines) {
    const auto errors = Upload("tmp:BAD.PRG", "10 PRINT 1\r\n20 PRIMT 2\r\n30 GOTO\r\n40 END");
    ASSERT_GE(errors->Count(), 1U);
    EXPECT_EQ(errors->Item(1)->QNErrInLine, 2);
    EXPECT_EQ(errors->Item(1)->QNText, "20 PRIMT 2");
    EXPECT_GT(errors->Item(1)->QNErrCode, 0);
    EXPECT_NE(errors->Item(1)->QNErrDesc, "");
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("BAD.PRG")));
    EXPECT_GT(mQuorin.Fre(), 0);
}

TEST_F(Layer, LinksModulesBehindAHeader) {
    EXPECT_TRUE(Upload("tmp:A.PRG", "100 PRINT \"a\"")->IsEmpty());
    EXPECT_TRUE(Upload("tmp:B.PRG", "200 PRINT \"b\"")->IsEmpty());
    Collection<std::string> modules;
    modules.Add("A.PRG");
    modules.Add("tmp:B.PRG");
    EXPECT_TRUE(mQuorin.ProgramLink(modules, "5 REM head"));
    mQuorin.UploadQNProgram((mFolder / "a.lst").string());
    EXPECT_EQ(Read("a.lst"), "5 REM head\r\n100 PRINT \"a\"\r\n200 PRINT \"b\"\r\n");
    modules.Add("NONE.PRG");
    EXPECT_FALSE(mQuorin.ProgramLink(modules));
}

TEST_F(Layer, ReadsChangesWritesAndLoadsTheSetup) {
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

TEST_F(Layer, ListsFontsAndLeavesOutTheBitmapOnes) {
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

/// A picture of 8 by 1 dots, run-length packed.
std::string SmallPcx() {
    std::string pcx(128, '\0');
    const std::pair<std::size_t, char> fields[] = {{0, 10}, {1, 5},  {2, 1}, {3, 1},
                                                   {8, 7},  {65, 1}, {66, 2}};
    for (const auto& [at, value] : fields)
        pcx[at] = value;
    return pcx + "\xC1\xAA" + std::string(1, '\0');
}

TEST_F(Layer, InstallsPrintsListsAndRemovesAnImage) {
    const std::string path = Write("logo.pcx", SmallPcx());
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

TEST_F(Layer, LoadsAnyFile) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += static_cast<char>(i * 7);
    mQuorin.SetCurrentPrinterDir("tmp:");
    mQuorin.Fileload(Write("data.bin", bytes));
    std::string device = "tmp:";
    mQuorin.Files(device);
    EXPECT_EQ(mQuorin.PrinterDevices()->Item("tmp:")->Files->Item("DATA.BIN")->Size, 5000);
}

TEST_F(Layer, ARebootIsFollowedByANewDeviceTable) {
    FilesOn("c:");
    mQuorin.Reboot();
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
    FilesOn("c:");
    EXPECT_EQ(mQuorin.PrinterDevices()->Count(), 8U);
}

class LayerOnSevenBits : public Layer {
  protected:
    LayerOnSevenBits() : Layer("sim:R7G?format=n,7,2") {}
};

TEST_F(LayerOnSevenBits, TheLineIsAdjustedForAnImage) {
    const std::string path = Write("logo.pcx", SmallPcx());
    mStack.mDesktop.mAnswers = {MsgBoxResult::No, MsgBoxResult::Yes};
    EXPECT_RAISED(mQuorin.InstallImage(path), 1014);
    mQuorin.InstallImage(path);
    EXPECT_EQ(mStack.mLink.Databits(), "8");
    EXPECT_EQ(SetupValue("SER-COM,UART1,CHAR LENGTH"), "8");
    mQuorin.Images();
    EXPECT_THAT(Names("images:"), Contains("LOGO.PCX"));
}

class LayerWithoutListing : public Layer {
  protected:
    LayerWithoutListing() : Layer("sim:R7C") {}
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

class LayerOnModel : public Layer, public ::testing::WithParamInterface<ModelRow> {
  protected:
    LayerOnModel() : Layer("sim:" + std::string(GetParam().code)) {}
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

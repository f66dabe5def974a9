// A host that calls the control back within its events: what cannot be done then is refused
// quietly, and the operation that runs comes to the same end.

#include "LongOperations.h"

#include "common/modErrorHandling.h"
#include "dialogs/frmCommSettings.h"

namespace qncomm::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Gt;

class CalledBack : public WithinEvents {
  protected:
    CalledBack() {
        mFolder.Write("intruder.bin", "INTRUDER");
        mFolder.Write("picture.pcx", "no picture");
        mSettings->WriteValue("FunctionKeys", "F1", "0;INTRUDER<CR>");
        mSettings->WriteValue("FunctionKeys", "F2", "1;" + mFolder.File("intruder.bin"));
    }

    struct Call {
        const char* name;
        std::function<void()> make;
    };

    /// What a host may ask of the control at any time, without changing what is on the printer.
    std::vector<Call> Calls() {
        const std::string file = mFolder.File("intruder.bin");
        return {
            {"Files", [this] { Control().Files("c:", true); }},
            {"Files of another device", [this] { Control().Files("tmp:", false, true); }},
            {"Images", [this] { Control().Images(true); }},
            {"Fonts", [this] { Control().Fonts(true, true); }},
            {"ImagesCount", [this] { Control().ImagesCount(); }},
            {"DeviceUsedMem", [this] { Control().DeviceUsedMem("c:"); }},
            {"PrinterType", [this] { Control().PrinterType(); }},
            {"FirmwareVersion", [this] { Control().FirmwareVersion(); }},
            {"Fre", [this] { Control().Fre(); }},
            {"Setup", [this] { Control().Setup(); }},
            {"ChDir", [this] { Control().ChDir("c:"); }},
            {"DoAutoconnect", [this] { Control().DoAutoconnect(); }},
            {"ShowCommSettings", [this] { Control().ShowCommSettings(); }},
            {"UploadQNProgram", [=, this] { Control().UploadQNProgram(file + ".txt"); }},
            {"InstallImage", [=, this] { Control().InstallImage(file); }},
            {"PasteCB", [this] { Control().PasteCB(); }},
            {"BinaryUpload", [=, this] { Control().BinaryUpload(file); }},
            {"BinaryDownload", [=, this] { Control().BinaryDownload(file + ".back"); }},
            {"KermitDownload",
             [=, this] { Control().KermitDownload("c:PRICES.DAT", file + ".back"); }},
            {"a text macro", [this] { Control().PressToolbarKey("F1"); }},
            {"a file macro", [this] { Control().PressToolbarKey("F2"); }},
            {"the settings key", [this] { Control().PressToolbarKey("CommSettings"); }},
            {"the search key", [this] { Control().PressToolbarKey("Autoconnect"); }},
            {"the binary key", [this] { Control().PressToolbarKey("UploadB"); }},
            {"CopyCB", [this] { Control().CopyCB(); }},
            {"Clear", [this] { Control().Clear(); }},
            {"Refresh", [this] { Control().Refresh(); }},
            {"a typed key", [this] { mAssembly->Viewport().Type("\r\r\r"); }},
        };
    }

    /// Makes a call; what it raises is the host's to see.
    static void Make(const Call& call) {
        try {
            call.make();
        } catch (const QNError& error) {
            EXPECT_NE(error.Number(), 0);
        }
    }
};

TEST_P(CalledBack, TheOperationComesToTheSameEnd) {
    Prepare();
    Run(0, [] {});
    const std::string undisturbed = GetParam().outcome(*this);
    ASSERT_EQ(mRaised, 0);

    for (const Call& call : Calls()) {
        SCOPED_TRACE(call.name);
        Prepare();
        mClipboard.mText = "INTRUDER";

        Run(0, [&] { Make(call); });
        EXPECT_EQ(mRaised, 0);
        EXPECT_EQ(GetParam().outcome(*this), undisturbed);
        ExpectUsable();
    }
}

/// What gives the line other settings closes and opens the port, in the middle of whatever runs.
TEST_P(CalledBack, OtherSettingsEndTheOperationAtMostWithItsOwnError) {
    mForms.On<frmCommSettings>([](frmCommSettings& form) { form.cmdOK.Click(); });
    const Call calls[] = {{"RegSettings", [this] { Control().SetRegSettings(mSettings); }},
                          {"CommSettings", [this] { Control().ShowCommSettings(); }}};
    for (const Call& call : calls) {
        SCOPED_TRACE(call.name);
        for (const int at : Chosen(CountEvents())) {
            SCOPED_TRACE(at);
            Prepare();
            Run(at, [&] { Make(call); });
            EXPECT_THAT(mRaised, AnyOf(0, ErrProtocol, ErrInputTimeout, ErrDownloadTimeout,
                                       ErrUploadTimeout, Gt(60000)));
            mReactor.Pass(6000);
            ExpectUsable();
        }
    }
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Of, CalledBack, ::testing::ValuesIn(LongOperations()),
                         [](const auto& operation) { return operation.param.name; });

} // namespace qncomm::testing

// Files to and from the printer through the control, by its members and by its toolbar.

#include "testing/stack/AssembledFixture.h"

#include "common/modErrorHandling.h"
#include "dialogs/frmBinaryTransfer.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string EveryByte(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; ++at)
        bytes[at] = static_cast<char>(at * 7 + at / 256);
    return bytes;
}

struct TransferWay {
    const char* name;
    const char* letter; ///< of the printer's statement
    std::int16_t protocol;
    std::int32_t listIndex; ///< in the dialog
};

class FileTransfers : public AssembledFixture, public ::testing::WithParamInterface<TransferWay> {
  protected:
    FileTransfers() {
        Show().DoAutoconnect();
        Control().Clear();
    }

    /// The user starts the printer's side.
    void StartPrinter(const std::string& arguments) {
        const std::string line = "TRANSFER " + std::string(GetParam().letter) + " " + arguments;
        EXPECT_EQ(mAssembly->Viewport().Type(line + "\r"), line.size() + 1);
        mReactor.Pass(100);
    }
    void ExpectPrompt() {
        mReactor.Pass(60'000);
        EXPECT_EQ(Type("PRINT 1\r"), "PRINT 1\r\n1\r\nOk");
    }
    /// The dialog of the toolbar's binary keys, answered with a name in the scratch folder.
    void AnswerDialog(const std::string& name) {
        mForms.On<frmBinaryTransfer>([this, name](frmBinaryTransfer& form) {
            form.lblFolder.SetCaption(mFolder.Path());
            form.txtFilename.Type(name, 0);
            form.cmbProtocol.Pick(GetParam().listIndex);
            form.cmdButton[0].Click();
        });
    }

    const std::string mContent = EveryByte(20'000);
};

TEST_P(FileTransfers, AFileGoesToThePrinterAndComesBack) {
    const std::string sent = mFolder.Write("DATA.BIN", mContent);
    StartPrinter("\"R\"");
    Control().BinaryUpload(sent, GetParam().protocol);
    mReactor.Pass(1000);
    EXPECT_EQ(Control().Files("c:")->Item("DATA.BIN")->Size, 20'000);
    StartPrinter("\"S\",\"c:DATA.BIN\"");
    Control().BinaryDownload(mFolder.File("back.bin"), GetParam().protocol);
    EXPECT_TRUE(ContentOf(mFolder.File("back.bin")) == mContent);
    ExpectPrompt();
}

TEST_P(FileTransfers, TheToolbarSendsAndFetchesTheChosenFile) {
    mFolder.Write("DATA.BIN", mContent);
    AnswerDialog("DATA.BIN");
    StartPrinter("\"R\"");
    Control().PressToolbarKey("UploadB");
    mReactor.Pass(1000);
    EXPECT_EQ(Control().Files("c:")->Item("DATA.BIN")->Size, 20'000);
    AnswerDialog("BACK.BIN");
    StartPrinter("\"S\",\"c:DATA.BIN\"");
    Control().PressToolbarKey("DownloadB");
    EXPECT_TRUE(ContentOf(mFolder.File("BACK.BIN")) == mContent);
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    ExpectPrompt();
}

TEST_P(FileTransfers, ProgressIsToldAndACancelEndsBothSides) {
    Strings messages;
    std::vector<std::int16_t> progress;
    std::int16_t stopAt = 101;
    std::size_t typed = 0;
    const Subscription status =
        Control().StatusEvent.Connect([&](std::string& text, std::int16_t percent, bool& cancel) {
            messages.push_back(text);
            progress.push_back(percent);
            cancel = percent >= stopAt;
            if (percent == 0) typed += mAssembly->Viewport().Type("x");
        });
    const std::string sent = mFolder.Write("DATA.BIN", mContent);
    StartPrinter("\"R\"");
    Control().BinaryUpload(sent, GetParam().protocol);
    EXPECT_THAT(messages, Contains("Uploading DATA.BIN"));
    EXPECT_EQ(progress.back(), -1);
    EXPECT_THAT(progress, Contains(0)); // where it tried to type
    EXPECT_THAT(progress, Contains(100));
    EXPECT_EQ(typed, 0U) << "the line is the transfer's";
    mReactor.Pass(1000);
    stopAt = 0; // the first report: on a driven clock the whole file goes at once
    const std::string other = mFolder.Write("OTHER.BIN", mContent);
    StartPrinter("\"R\"");
    EXPECT_EQ(RaisedBy([&] { Control().BinaryUpload(other, GetParam().protocol); }),
              "1023 QNComm, clsDataLink:KermitUpload");
    ExpectPrompt();
    EXPECT_THAT(FilesOn("c:"), Contains("DATA.BIN"));
    EXPECT_THAT(FilesOn("c:"), Not(Contains("OTHER.BIN")));
}

TEST_P(FileTransfers, AHostThatCancelsTheTransferEndsBothSides) {
    mAssembly->CancelTransfer(); // none runs
    const Subscription status =
        Control().StatusEvent.Connect([&](std::string&, std::int16_t percent, bool&) {
            if (percent >= 0) mAssembly->CancelTransfer();
        });
    const std::string sent = mFolder.Write("DATA.BIN", mContent);
    StartPrinter("\"R\"");
    EXPECT_EQ(RaisedBy([&] { Control().BinaryUpload(sent, GetParam().protocol); }),
              "1023 QNComm, clsDataLink:KermitUpload");
    ExpectPrompt();
    EXPECT_THAT(FilesOn("c:"), Not(Contains("DATA.BIN")));
}

TEST_P(FileTransfers, WithoutAPrinterThatSendsADownloadEndsAndLeavesNoFile) {
    EXPECT_EQ(
        RaisedBy([&] { Control().BinaryDownload(mFolder.File("never.bin"), GetParam().protocol); }),
        "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_TRUE(mFolder.IsEmpty());
    EXPECT_GT(Control().Fre(), 0) << "the printer answers again";
}

TEST_P(FileTransfers, AnUploadNeedsAnOpenPortAndAFile) {
    EXPECT_EQ(
        NumberRaisedBy([&] { Control().BinaryUpload(mFolder.File("none"), GetParam().protocol); }),
        ErrUploadName);
    Control().UserControl_Hide();
    const std::string path = mFolder.Write("DATA.BIN", mContent);
    EXPECT_EQ(NumberRaisedBy([&] { Control().BinaryUpload(path, GetParam().protocol); }),
              ErrPortNotOpen);
}

INSTANTIATE_TEST_SUITE_P(Both, FileTransfers,
                         ::testing::Values(TransferWay{"Kermit", "K", BinaryKermit, 0},
                                           TransferWay{"ZModem", "Z", BinaryZModem, 1}),
                         [](const auto& way) { return way.param.name; });

class KermitFiles : public AssembledFixture {
  protected:
    std::vector<std::int16_t> mProgress;
    Subscription mFollow =
        Control().StatusEvent.Connect([this](std::string& text, std::int16_t percent, bool&) {
            if (text.starts_with("Downloading")) mProgress.push_back(percent);
        });
};

TEST_F(KermitFiles, AFileIsFetchedWithItsSizeFromTheListing) {
    const std::string path = mFolder.File("prices.dat");
    Control().KermitDownload("c:PRICES.DAT", path);
    EXPECT_EQ(ContentOf(path), "APPLE,1.20\r\nPEAR,1.45\r\nPLUM,2.10\r\n");
    EXPECT_THAT(TakeCommands(), Contains("FILES\"c:\""));
    EXPECT_THAT(mProgress, Contains(100));
    Control().KermitDownload("c:PRICES.DAT", path);
    EXPECT_THAT(TakeCommands(), Not(Contains("FILES\"c:\""))) << "the list was kept";
}

TEST_F(KermitFiles, AFileIsSentInPlaceOfTheOldOneAndTheCurrentDeviceStays) {
    Control().KermitUpload(mFolder.Write("new.dat", EveryByte(3000)), "tmp:PRICES.DAT");
    EXPECT_EQ(Control().Files("tmp:")->Item("PRICES.DAT")->Size, 3000);
    EXPECT_EQ(Control().Files("c:")->Item("PRICES.DAT")->Size, 34);
    Control().KermitUpload(mFolder.Write("new.dat", EveryByte(500)), "tmp:PRICES.DAT");
    EXPECT_EQ(Control().Files("tmp:")->Item("PRICES.DAT")->Size, 500) << "the list was out of date";
    Control().CopyFile("PRICES.DAT", "COPY.DAT");
    EXPECT_THAT(FilesOn("c:"), Contains("COPY.DAT")) << "bare names are still on c:";
    EXPECT_EQ(RaisedBy([&] { Control().KermitUpload(mFolder.File("none"), "c:PRICES.DAT"); }),
              "1011 clsDataLink,Upload");
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
    Control().KermitDownload("tmp:PRICES.DAT", mFolder.File("back"));
    EXPECT_TRUE(ContentOf(mFolder.File("back")) == EveryByte(500));
}

TEST_F(KermitFiles, AFileIsSentToAPrinterThatTheUserHasStarted) {
    Show().DoAutoconnect();
    mAssembly->Viewport().Type("TRANSFER K \"R\"\r");
    mReactor.Pass(100);
    TakeSent();
    Control().KermitUpload(mFolder.Write("MINE.DAT", EveryByte(3000)), "c:MINE.DAT", true);
    EXPECT_THAT(TakeSent(), Not(HasSubstr("TRANSFER")));
    mReactor.Pass(1000);
    EXPECT_EQ(Control().Files("c:", true)->Item("MINE.DAT")->Size, 3000);
}

TEST_F(KermitFiles, AFileThatIsNotThereFailsAndLeavesNone) {
    EXPECT_EQ(RaisedBy([&] { Control().KermitDownload("c:NONE", mFolder.File("none")); }),
              "61022 clsDatalink:GetPrinterError");
    EXPECT_THAT(TakeSent(), Not(HasSubstr("\1"))) << "no packet";
    EXPECT_TRUE(mFolder.IsEmpty());
    EXPECT_GT(Control().Fre(), 0);
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
}

} // namespace
} // namespace qncomm::testing

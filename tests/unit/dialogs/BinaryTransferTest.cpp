#include "dialogs/frmBinaryTransfer.h"

#include "common/HostPath.h"
#include "platform/SystemFiles.h"
#include "testing/core/DeskTools.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::RecordingDesktop;
using testing::ScratchFolder;
using testing::ScriptedFileDialogs;

class BinaryTransfer : public ::testing::Test {
  protected:
    frmBinaryTransfer& Open(std::int16_t action, std::int16_t protocol = BinaryKermit) {
        mForm.reset();
        mForm =
            std::make_unique<frmBinaryTransfer>(action, protocol, mDesktop, mFiles, SystemFiles());
        return *mForm;
    }

    /// The form with a name in the test's folder.
    frmBinaryTransfer& OpenOn(std::int16_t action, std::string_view name) {
        frmBinaryTransfer& form = Open(action);
        form.lblFolder.SetCaption(mFolder.Path());
        form.txtFilename.Type(name, 0);
        return form;
    }

    std::vector<std::string> TextsOfBoxes() const {
        std::vector<std::string> texts;
        for (const MsgBox& box : mDesktop.mBoxes)
            texts.push_back(box.text);
        return texts;
    }

    ScratchFolder mFolder;
    RecordingDesktop mDesktop;
    ScriptedFileDialogs mFiles;
    std::unique_ptr<frmBinaryTransfer> mForm;
};

TEST_F(BinaryTransfer, TheCaptionsFollowTheAction) {
    EXPECT_EQ(Open(PrinterReceives).Caption(), "Select File to Send (Printer Recieves File)");
    EXPECT_EQ(mForm->cmdButton[0].Caption(), "Send");
    EXPECT_EQ(Open(PrinterSends).Caption(), "Select Destination File (Printer Sends File)");
    EXPECT_EQ(mForm->cmdButton[0].Caption(), "Recieve");
    EXPECT_EQ(Open(2).Caption(), "");
    EXPECT_EQ(mForm->cmdButton[0].Caption(), "&Send");
    EXPECT_EQ(mForm->cmdButton[1].Caption(), "&Cancel");
    EXPECT_EQ(mForm->cmdBrowse.Caption(), "&Browse");
    EXPECT_EQ(mForm->lblProtocol.Caption(), "Protocol:");
    EXPECT_EQ(mForm->lblFilename.Caption(), "Filename:");
    EXPECT_EQ(mForm->lblFolderCaption.Caption(), "Folder:");
    EXPECT_EQ(mForm->lblFolder.Caption(), SystemFiles().CurrentFolder());
}

TEST_F(BinaryTransfer, TheProtocolsAreListedInTheirOrder) {
    const frmBinaryTransfer& form = Open(PrinterReceives, BinaryZModem);
    EXPECT_THAT(
        form.cmbProtocol.Entries(),
        ElementsAre(ListModel::Entry{"Kermit Protocol", 6},
                    ListModel::Entry{"ZModem Protocol (Printer must run QN 7.0 or higher)", 5}));
    EXPECT_EQ(form.cmbProtocol.SelectedValue(), 5);
}

TEST_F(BinaryTransfer, AnOddProtocolShowsKermitAndIsKeptUntilAPick) {
    frmBinaryTransfer& form = Open(PrinterReceives, 9);
    EXPECT_EQ(form.cmbProtocol.ListIndex(), 0);
    EXPECT_EQ(form.Protocol(), 9);
    form.cmbProtocol.Pick(0);
    EXPECT_EQ(form.Protocol(), 6);
    form.cmbProtocol.Pick(1);
    EXPECT_EQ(form.Protocol(), 5);
}

TEST_F(BinaryTransfer, BrowsingShowsNameAndFolderApart) {
    frmBinaryTransfer& form = Open(PrinterReceives);
    mFiles.mAnswers = {"/home/me/labels.prn"};
    form.cmdBrowse.Click();
    EXPECT_EQ(form.txtFilename.Text(), "labels.prn");
    EXPECT_EQ(form.lblFolder.Caption(), "/home/me/");
    EXPECT_EQ(form.Filename(), "/home/me/labels.prn");
    form.cmdBrowse.Click(); // cancelled
    EXPECT_EQ(form.Filename(), "/home/me/labels.prn");
    const FileDialog& dialog = mFiles.mShown[0];
    EXPECT_EQ(dialog.kind, FileDialogKind::Open);
    EXPECT_EQ(dialog.title, "Select File to Send (Printer Recieves File)");
    EXPECT_TRUE(dialog.mustExist);
    EXPECT_FALSE(dialog.confirmOverwrite);
    EXPECT_EQ(dialog.folder, SystemFiles().CurrentFolder());
    EXPECT_THAT(dialog.filters, ElementsAre(FileFilter{"All Files (*.*)", "*.*"}));
}

TEST_F(BinaryTransfer, BrowsingForADestinationAsksAboutOverwritingAndCreating) {
    Open(PrinterSends).cmdBrowse.Click();
    const FileDialog& dialog = mFiles.mShown[0];
    EXPECT_EQ(dialog.kind, FileDialogKind::Save);
    EXPECT_EQ(dialog.title, "Select Destination File (Printer Sends File)");
    EXPECT_FALSE(dialog.mustExist);
    EXPECT_TRUE(dialog.confirmOverwrite);
    EXPECT_TRUE(dialog.confirmCreate);
}

TEST_F(BinaryTransfer, ABareNameIsTakenRelativeToTheFolderShown) {
    mFolder.Write("a.bin", "x");
    frmBinaryTransfer& form = OpenOn(PrinterReceives, "a.bin");
    form.cmdButton[0].Click();
    EXPECT_FALSE(form.IsOpen());
    EXPECT_TRUE(form.Accepted());
    EXPECT_FALSE(form.Cancel());
    EXPECT_EQ(form.Filename(), mFolder.Path() + "/a.bin");
    frmBinaryTransfer& other = OpenOn(PrinterReceives, "a.bin");
    other.lblFolder.SetCaption(mFolder.Path() + "/");
    other.cmdButton[0].Click();
    EXPECT_EQ(other.Filename(), mFolder.Path() + "/a.bin");
    mFolder.Write("c:b.bin", "x");
    frmBinaryTransfer& colon = OpenOn(PrinterReceives, "c:b.bin");
    colon.cmdButton[0].Click();
    EXPECT_EQ(colon.Filename(), mFolder.Path() + "/c:b.bin") << "a colon is a letter like others";
}

TEST_F(BinaryTransfer, AFullPathIsTakenAsItIs) {
    const std::string path = mFolder.Write("a:b.bin", "x");
    frmBinaryTransfer& form = Open(PrinterReceives);
    form.txtFilename.Type(path, 0);
    form.cmdButton[0].Click();
    EXPECT_EQ(form.Filename(), path);
    EXPECT_TRUE(form.Accepted());
}

TEST_F(BinaryTransfer, AFileToSendMustExist) {
    for (const char* name : {"missing", "", "."}) {
        mDesktop.mBoxes.clear();
        frmBinaryTransfer& form = OpenOn(PrinterReceives, name);
        form.cmdButton[0].Click();
        EXPECT_TRUE(form.IsOpen()) << name;
        EXPECT_FALSE(form.Accepted());
        EXPECT_THAT(TextsOfBoxes(), ElementsAre("Not a valid file for Upload!"));
        EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
        EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::Ok);
    }
}

TEST_F(BinaryTransfer, NoToOverwritingKeepsTheDialogOpenAndTheFileUntouched) {
    const std::string path = mFolder.Write("a.bin", "kept");
    frmBinaryTransfer& form = OpenOn(PrinterSends, "a.bin");
    for (const MsgBoxResult answer : {MsgBoxResult::No, MsgBoxResult::Cancel}) {
        mDesktop.mAnswers = {answer};
        form.cmdButton[0].Click();
        EXPECT_TRUE(form.IsOpen());
        EXPECT_EQ(testing::ContentOf(path), "kept");
    }
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    form.cmdButton[0].Click();
    EXPECT_TRUE(form.Accepted());
    EXPECT_EQ(testing::ContentOf(path), "kept");
    EXPECT_THAT(TextsOfBoxes(), Each("Overwrite existing file?"));
    EXPECT_EQ(mDesktop.mBoxes.size(), 3U);
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Question);
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::YesNo);
}

TEST_F(BinaryTransfer, ANewDestinationIsTriedAndTheProbeRemoved) {
    frmBinaryTransfer& form = OpenOn(PrinterSends, "new.bin");
    form.cmdButton[0].Click();
    EXPECT_TRUE(form.Accepted());
    EXPECT_TRUE(mFolder.IsEmpty());
    EXPECT_TRUE(mDesktop.mBoxes.empty());
}

TEST_F(BinaryTransfer, AnActionThatIsNeitherIsCheckedAsADestination) {
    frmBinaryTransfer& form = OpenOn(2, "new.bin");
    form.cmdButton[0].Click();
    EXPECT_TRUE(form.Accepted());
    OpenOn(2, "no/such/folder.bin").cmdButton[0].Click();
    EXPECT_THAT(TextsOfBoxes(), ElementsAre("Not a valid file for Download!"));
}

TEST_F(BinaryTransfer, ADestinationThatCannotBeMadeIsRefusedAndLeavesNoFile) {
    for (const char* name : {"no/such/folder.bin", "", "."}) {
        mDesktop.mBoxes.clear();
        frmBinaryTransfer& form = OpenOn(PrinterSends, name);
        form.cmdButton[0].Click();
        EXPECT_TRUE(form.IsOpen()) << name;
        EXPECT_THAT(TextsOfBoxes(), ElementsAre("Not a valid file for Download!"));
        EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
        EXPECT_TRUE(mFolder.IsEmpty());
    }
}

TEST_F(BinaryTransfer, CancelAndTheCloseBoxCloseUnchecked) {
    frmBinaryTransfer& form = OpenOn(PrinterReceives, "missing");
    form.cmdButton[0].Click();
    form.cmdButton[1].Click();
    EXPECT_FALSE(form.IsOpen());
    EXPECT_TRUE(form.Cancel());
    EXPECT_FALSE(form.Accepted());
    frmBinaryTransfer& other = OpenOn(PrinterReceives, "missing");
    EXPECT_TRUE(other.Unload(UnloadMode::ControlMenu));
    EXPECT_FALSE(other.Cancel());
    EXPECT_FALSE(other.Accepted()) << "the opener starts nothing";
}

} // namespace
} // namespace qncomm

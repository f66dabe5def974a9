#include "dialogs/frmBinaryTransfer.h"

#include "common/HostPath.h"
#include "common/Text.h"

namespace qncomm {
namespace {

constexpr std::string_view SourceTitle = "Select File to Send (Printer Recieves File)";
constexpr std::string_view DestinationTitle = "Select Destination File (Printer Sends File)";

} // namespace

frmBinaryTransfer::frmBinaryTransfer(std::int16_t iAction, std::int16_t iProtocol, Desktop& desktop,
                                     FileDialogs& files, HostFiles& hostFiles)
    : FormModel({}),
      mAction(iAction),
      mProtocol(iProtocol),
      mDesktop(desktop),
      mFiles(files),
      mHostFiles(hostFiles) {
    On(cmbProtocol.Clicked,
       [this] { mProtocol = static_cast<std::int16_t>(cmbProtocol.SelectedValue()); });
    On(cmdBrowse.Clicked, [this] { cmdBrowse_Click(); });
    On(cmdButton[0].Clicked, [this] { cmdButton_Click(false); });
    On(cmdButton[1].Clicked, [this] { cmdButton_Click(true); });
    Form_Load();
}

void frmBinaryTransfer::Form_Load() {
    lblFolder.SetCaption(mHostFiles.CurrentFolder());
    cmbProtocol.SetEntries({{"Kermit Protocol", BinaryKermit},
                            {"ZModem Protocol (Printer must run QN 7.0 or higher)", BinaryZModem}});
    if (!cmbProtocol.SelectValue(mProtocol)) cmbProtocol.SetListIndex(0);
    if (mAction == PrinterReceives) {
        SetCaption(SourceTitle);
        cmdButton[0].SetCaption("Send");
    } else if (mAction == PrinterSends) {
        SetCaption(DestinationTitle);
        cmdButton[0].SetCaption("Recieve");
    }
}

void frmBinaryTransfer::cmdBrowse_Click() {
    FileDialog dialog;
    dialog.filters = {{"All Files (*.*)", "*.*"}};
    dialog.folder = mHostFiles.CurrentFolder();
    if (mAction == PrinterSends) {
        dialog.kind = FileDialogKind::Save;
        dialog.title = DestinationTitle;
        dialog.confirmOverwrite = dialog.confirmCreate = true;
    } else {
        dialog.title = SourceTitle;
        dialog.mustExist = true;
    }
    const auto chosen = mFiles.ChooseFile(dialog);
    if (!chosen) return;
    txtFilename.SetText(FileNameOf(*chosen));
    lblFolder.SetCaption(FolderOf(*chosen));
    mFilename = *chosen;
}

void frmBinaryTransfer::cmdButton_Click(bool cancel) {
    mCancel = cancel;
    Unload(UnloadMode::FormCode);
}

bool frmBinaryTransfer::QueryUnload(UnloadMode mode) {
    if (mode != UnloadMode::FormCode || mCancel) return true;
    mFilename = PathIn(lblFolder.Caption(), txtFilename.Text());
    if (mAction == PrinterReceives)
        mAccepted = mHostFiles.Exists(mFilename) || Refuse("Not a valid file for Upload!");
    else
        mAccepted = IsValidDestination();
    return mAccepted;
}

bool frmBinaryTransfer::IsValidDestination() {
    if (!mHostFiles.Exists(mFilename))
        return mHostFiles.CanCreate(mFilename) || Refuse("Not a valid file for Download!");
    MsgBox question;
    question.text = "Overwrite existing file?";
    question.buttons = MsgBoxButtons::YesNo;
    question.icon = MsgBoxIcon::Question;
    return mDesktop.ShowMsgBox(question) == MsgBoxResult::Yes;
}

/// Tells the user and answers that the form stays open.
bool frmBinaryTransfer::Refuse(std::string_view message) {
    MsgBox box;
    box.text = message;
    box.icon = MsgBoxIcon::Exclamation;
    mDesktop.ShowMsgBox(box);
    return false;
}

} // namespace qncomm

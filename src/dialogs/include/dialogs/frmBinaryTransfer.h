#pragma once

#include "common/ControlModels.h"
#include "common/Desktop.h"
#include "common/FileDialog.h"
#include "common/HostFiles.h"
#include "dialogs/FormModel.h"
#include "link/SerialControl.h"

#include <array>
#include <cstdint>
#include <string>

namespace qncomm {

/// Which side of a binary transfer the form is for.
enum BinaryTransferAction : std::int16_t {
    PrinterReceives = 0, ///< this side sends Filename
    PrinterSends = 1,    ///< this side writes Filename
};

/// The modal dialog in which the user chooses protocol and host file of one binary transfer. It
/// checks the file before the action button closes it and transfers nothing: its opener does, when
/// Accepted says so.
class frmBinaryTransfer : public FormModel {
  public:
    /// Loads the form for a BinaryTransferAction and a BinaryProtocol; other values are kept as
    /// they are and shown as the designed captions and as Kermit. Desktop, file dialogs and
    /// host files must outlive it.
    frmBinaryTransfer(std::int16_t iAction, std::int16_t iProtocol, Desktop& desktop,
                      FileDialogs& files, HostFiles& hostFiles);

    /// The BinaryTransferAction that the form was made for.
    std::int16_t Action() const { return mAction; }
    /// The BinaryProtocol. Follows the list only when the user picks from it.
    std::int16_t Protocol() const { return mProtocol; }
    /// The full host path; empty before one was chosen or checked.
    const std::string& Filename() const { return mFilename; }
    /// Whether the dialog was left with Cancel.
    bool Cancel() const { return mCancel; }
    /// Whether the action button closed the dialog: the transfer may start.
    bool Accepted() const { return mAccepted; }

    const LabelModel lblProtocol{"Protocol:"};    ///< stands before cmbProtocol
    ListModel cmbProtocol;                        ///< values are BinaryProtocol
    const LabelModel lblFilename{"Filename:"};    ///< stands before txtFilename
    TextBoxModel txtFilename;                     ///< the file's name without its folder
    const LabelModel lblFolderCaption{"Folder:"}; ///< stands before lblFolder
    LabelModel lblFolder;                         ///< the file's folder; only Browse changes it
    ButtonModel cmdBrowse{"&Browse"};             ///< asks for the file by a file dialog
    /// Sends or receives (the caption says which), and cancels.
    std::array<ButtonModel, 2> cmdButton{ButtonModel("&Send"), ButtonModel("&Cancel")};

  private:
    void Form_Load();
    void cmdBrowse_Click();
    void cmdButton_Click(bool cancel);
    bool QueryUnload(UnloadMode mode) override;

    bool IsValidDestination();
    bool Refuse(std::string_view message);

    std::int16_t mAction;
    std::int16_t mProtocol;
    Desktop& mDesktop;
    FileDialogs& mFiles;
    HostFiles& mHostFiles;
    std::string mFilename;
    bool mCancel = false;
    bool mAccepted = false;
};

} // namespace qncomm

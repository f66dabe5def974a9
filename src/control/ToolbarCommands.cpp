// What the toolbar's buttons do.

#include "Members.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "link/SendInPieces.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::size_t BlockSize = 16384; // bytes of a file that are read at once

/// What a cancel finds on its way is dropped: it would go on being carried out for as long as the
/// line takes for it.
void SendTyped(clsDataLink& link, std::string_view text) {
    try {
        SendInPieces(link, text);
    } catch (const OperationCancelled&) {
        link.EndUnfinishedLine();
        throw;
    }
}

} // namespace

struct QNComm::ToolbarCommand {
    std::string_view key;
    void (*run)(QNComm&);
};

void QNComm::Dispatch(const std::string& key) {
    static constexpr std::array commands = {
        ToolbarCommand{"CommSettings", [](QNComm& control) { control.ShowCommSettings(); }},
        ToolbarCommand{"Autoconnect", [](QNComm& control) { control.DoAutoconnect(); }},
        ToolbarCommand{"Clear", [](QNComm& control) { control.Clear(); }},
        ToolbarCommand{"Copy", [](QNComm& control) { control.CopyCB(); }},
        ToolbarCommand{"Paste", [](QNComm& control) { control.PasteCB(); }},
        ToolbarCommand{"UploadA", [](QNComm& control) { control.UploadText(); }},
        ToolbarCommand{"DownloadA", [](QNComm& control) { control.DownloadText(); }},
        ToolbarCommand{"UploadB", [](QNComm& control) { control.TransferFile(PrinterReceives); }},
        ToolbarCommand{"DownloadB", [](QNComm& control) { control.TransferFile(PrinterSends); }},
        ToolbarCommand{"FunctionkeysSetup", [](QNComm& control) { control.ShowFunctionKeys(); }},
    };
    const auto command = std::ranges::find(commands, key, &ToolbarCommand::key);
    if (command != commands.end())
        command->run(*this);
    else if (std::ranges::find(FunctionKeys, key) != FunctionKeys.end())
        PressFunctionKey(key);
    else
        Tell(std::string(CrLf) + "This function is not implemented ", MsgBoxIcon::None);
}

void QNComm::PressToolbarKey(std::string_view KeyIndex) {
    const ToolbarButton* button = Toolbar1.Find(KeyIndex);
    const std::string key(button != nullptr ? button->key : KeyIndex);
    Toolbar1.Press(key);
    Dispatch(key);
}

void QNComm::PressToolbarKey(std::int32_t KeyIndex) {
    PressToolbarKey(Toolbar1.At(KeyIndex).key);
}

void QNComm::LoadFunctionKeyTips() {
    for (const std::string_view key : FunctionKeys)
        Toolbar1.SetToolTip(key, MacroTip(ReadMacro(mRegSettings.get(), key)));
}

void QNComm::PressFunctionKey(const std::string& key) {
    const MacroRecord record = ReadMacro(mRegSettings.get(), key);
    const auto kind = record.Kind();
    if (kind == TextMacro) SendTextMacro(record.argument);
    if (kind == FileMacro) SendFileMacro(record.argument);
    if (kind == RunMacro) StartProgram(record.argument);
}

void QNComm::SendTextMacro(const std::string& argument) {
    std::optional<std::string> expanded;
    if (!Outlives([&] { expanded = std::shared_ptr(mPrompts)->Expand(argument); })) return;
    if (!expanded)
        Tell("Syntax Error, missing delimiter '&&'.", MsgBoxIcon::None);
    else if (const std::string text = ReplaceControlNames(*expanded); !text.empty())
        SendText(text);
}

void QNComm::SendFileMacro(const std::string& path) {
    if (mServices.hostFiles.Exists(path))
        SendFile(path);
    else
        Tell("File '" + path + "' not found.", MsgBoxIcon::Exclamation);
}

void QNComm::StartProgram(const std::string& commandLine) {
    const LaunchRequest request = ParseCommandLine(commandLine);
    if (request.program.empty()) return;
    const LaunchResult result = mServices.launcher.Launch(request);
    if (result.kind != LaunchResult::Kind::Started)
        Tell("Can't start '" + request.program + "'." + std::string(CrLf) + result.text,
             MsgBoxIcon::Exclamation);
}

void QNComm::UploadText() {
    FileDialog dialog;
    dialog.title = "Select File to Send (Printer Recieves File).";
    dialog.filters = {{"Text files (*.txt)", "*.txt"}, {"All Files (*.*)", "*.*"}};
    dialog.defaultExtension = ".txt";
    if (const auto path = ChosenFile(dialog)) SendFile(*path);
}

void QNComm::DownloadText() {
    FileDialog dialog;
    dialog.kind = FileDialogKind::Save;
    dialog.title = "Select Destination File (Printer Sends File)";
    dialog.defaultExtension = "txt";
    const auto path = ChosenFile(dialog);
    if (!path) return;
    MsgBox question;
    question.text = "Selected file is not empty. Do you want to clear the file?";
    question.buttons = MsgBoxButtons::YesNo;
    question.icon = MsgBoxIcon::Question;
    const bool stays = Outlives([&, &desktop = mServices.desktop, &files = mServices.hostFiles] {
        if (files.Size(*path) > 0 && desktop.ShowMsgBox(question) == MsgBoxResult::Yes)
            files.Delete(*path);
    });
    if (stays) SetCaptureToFile(*path);
}

void QNComm::ShowFunctionKeys() {
    frmFunctionKeysSetup form(mRegSettings, mServices.files);
    const bool stays = Outlives([&] { mServices.forms.ShowModal(form); });
    form.Unload(UnloadMode::ControlMenu);
    if (stays) LoadFunctionKeyTips();
}

/// The file that the user chose; nothing when the dialog was cancelled or the control is gone.
std::optional<std::string> QNComm::ChosenFile(const FileDialog& dialog) {
    std::optional<std::string> path;
    return Outlives([&] { path = mServices.files.ChooseFile(dialog); }) ? path : std::nullopt;
}

/// Text that the user sends would go into the middle of what an operation says to the printer.
bool QNComm::MaySend() const {
    if (Wired()->operations == 0) return true;
    mServices.desktop.Log("Nothing was sent: an operation is running.");
    return false;
}

void QNComm::SendText(std::string_view text) {
    if (!MaySend()) return;
    const Operation operation = Begin();
    SendTyped(operation.Link(), text);
}

void QNComm::SendFile(const std::string& path) {
    if (!MaySend()) return;
    if (!mServices.hostFiles.Exists(path)) RaiseRuntimeError(RtFileNotFound);
    const std::unique_ptr<HostFile> file = mServices.hostFiles.Open(path);
    const Operation operation = Begin();
    for (std::string block = file->ReadSome(BlockSize); !block.empty();
         block = file->ReadSome(BlockSize))
        SendTyped(operation.Link(), block);
}

void QNComm::Tell(std::string text, MsgBoxIcon icon) const {
    MsgBox box;
    box.text = std::move(text);
    box.icon = icon;
    mServices.desktop.ShowMsgBox(box);
}

} // namespace qncomm

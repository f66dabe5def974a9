// What the toolbar's buttons do.

#include "Members.h"
#include "common/HostPath.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmFunctionKeysSetup.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace qncomm {
namespace {

// What the line takes in a moment even at its slowest, so that no wait for it to drain runs out.
constexpr std::size_t PieceSize = 1024;

constexpr std::array<std::string_view, frmFunctionKeysSetup::KeyCount> FunctionKeys = {
    "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8"};

} // namespace

struct QNComm::ToolbarCommand {
    std::string_view key;
    void (*run)(QNComm&);
};

void QNComm::Dispatch(const std::string& key) {
    static constexpr std::array Commands = {
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
    const auto command = std::ranges::find(Commands, key, &ToolbarCommand::key);
    if (command != Commands.end())
        command->run(*this);
    else if (std::ranges::find(FunctionKeys, key) != FunctionKeys.end())
        RunMacro(key);
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

void QNComm::RunMacro(const std::string& key) {
    const MacroRecord record = ReadMacro(mRegSettings.get(), key);
    if (record.kind == "0") SendTextMacro(record.argument);
    if (record.kind == "1") SendFileMacro(record.argument);
    if (record.kind == "2") StartProgram(record.argument);
}

void QNComm::SendTextMacro(const std::string& argument) {
    const auto here = Here();
    const auto prompts = mPrompts;
    const auto expanded = prompts->Expand(argument);
    if (here.expired()) return;
    if (!expanded)
        Tell("Syntax Error, missing delimiter '&&'.", MsgBoxIcon::None);
    else if (const std::string text = ReplaceControlNames(*expanded); !text.empty())
        SendText(text);
}

void QNComm::SendFileMacro(const std::string& path) {
    if (FileExists(path))
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
    const auto here = Here();
    const auto path = mServices.files.ChooseFile(dialog);
    if (path && !here.expired()) SendFile(*path);
}

void QNComm::DownloadText() {
    FileDialog dialog;
    dialog.kind = FileDialogKind::Save;
    dialog.title = "Select Destination File (Printer Sends File)";
    dialog.defaultExtension = "txt";
    const auto here = Here();
    const auto path = mServices.files.ChooseFile(dialog);
    if (!path || here.expired()) return;
    MsgBox question;
    question.text = "Selected file is not empty. Do you want to clear the file?";
    question.buttons = MsgBoxButtons::YesNo;
    question.icon = MsgBoxIcon::Question;
    if (FileSize(*path) > 0 && mServices.desktop.ShowMsgBox(question) == MsgBoxResult::Yes)
        DeleteFile(*path);
    if (!here.expired()) SetCaptureToFile(*path);
}

void QNComm::ShowFunctionKeys() {
    frmFunctionKeysSetup form(mRegSettings, mServices.files);
    const auto here = Here();
    mServices.forms.ShowModal(form);
    form.Unload(UnloadMode::ControlMenu);
    if (!here.expired()) LoadFunctionKeyTips();
}

/// Text of a person would go into the middle of what an operation is saying to the printer.
bool QNComm::MaySend() const {
    if (Wired()->operations == 0) return true;
    mServices.desktop.Log("Nothing was sent: an operation is running.");
    return false;
}

void QNComm::SendText(std::string_view text) {
    if (!MaySend()) return;
    const Operation operation = Begin();
    do {
        std::string piece(text.substr(0, PieceSize));
        text.remove_prefix(piece.size());
        operation->OutputText(piece);
    } while (!text.empty());
}

void QNComm::SendFile(const std::string& path) {
    if (!MaySend()) return;
    if (!FileExists(path)) RaiseRuntimeError(RtFileNotFound);
    std::ifstream file(path, std::ios::binary);
    if (!file) RaiseRuntimeError(RtPathFileAccess);
    const Operation operation = Begin();
    std::string piece;
    do {
        piece.resize(PieceSize);
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        piece.resize(static_cast<std::size_t>(file.gcount()));
        if (!piece.empty()) operation->OutputText(piece);
    } while (file);
    if (file.bad()) RaiseRuntimeError(RtDeviceIO);
}

void QNComm::Tell(std::string text, MsgBoxIcon icon) const {
    MsgBox box;
    box.text = std::move(text);
    box.icon = icon;
    mServices.desktop.ShowMsgBox(box);
}

} // namespace qncomm

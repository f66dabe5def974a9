#include "console/ConsoleFileDialogs.h"

#include "common/HostPath.h"
#include "common/Text.h"

namespace qncomm {
namespace {

std::string WithExtension(std::string path, const std::string& extension) {
    if (extension.empty() || FileNameOf(path).find('.') != std::string::npos) return path;
    return path + (extension.starts_with('.') ? "" : ".") + extension;
}

std::string QuestionOf(const FileDialog& dialog) {
    if (dialog.title.ends_with('.')) return dialog.title.substr(0, dialog.title.size() - 1) + ":";
    if (!dialog.title.empty()) return dialog.title + ":";
    return dialog.kind == FileDialogKind::Open ? "Open file:" : "Save as:";
}

} // namespace

std::optional<std::string> ConsoleFileDialogs::ChooseFile(const FileDialog& dialog) {
    const bool given = mAsker.HasGiven();
    const auto answer = mAsker.Ask(QuestionOf(dialog));
    if (!answer || answer->empty()) return std::nullopt;
    const std::string folder = dialog.folder.empty() ? CurrentFolder() : dialog.folder;
    const std::string path =
        PathIn(given ? CurrentFolder() : folder, WithExtension(*answer, dialog.defaultExtension));
    if (dialog.mustExist && !FileExists(path)) {
        mAsker.Tell(path + ": there is no such file.");
        return std::nullopt;
    }
    if (!given && !Confirmed(dialog, path)) return std::nullopt;
    return path;
}

bool ConsoleFileDialogs::Confirmed(const FileDialog& dialog, const std::string& path) {
    const bool exists = FileExists(path);
    if (!(exists ? dialog.confirmOverwrite : dialog.confirmCreate)) return true;
    const std::string question = path
                                 + (exists ? " already exists. Do you want to replace it?"
                                           : " does not exist. Do you want to create it?");
    return mDesktop.ShowMsgBox({question, MsgBoxButtons::YesNo, MsgBoxIcon::Question, dialog.title})
           == MsgBoxResult::Yes;
}

} // namespace qncomm

#include "console/ConsoleFileDialogs.h"

#include "common/HostPath.h"
#include "platform/SystemFiles.h"

namespace qncomm {
namespace {

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
    const std::string folder =
        dialog.folder.empty() ? SystemFiles().CurrentFolder() : dialog.folder;
    const FileChoice choice = JudgeChoice(
        dialog, PathIn(given ? SystemFiles().CurrentFolder() : folder, *answer), SystemFiles());
    if (choice.next == FileChoice::Next::Refuse) {
        mAsker.Tell(choice.path + ": there is no such file.");
        return std::nullopt;
    }
    if (choice.next == FileChoice::Next::Ask && !given && !Confirmed(dialog, choice.question))
        return std::nullopt;
    return choice.path;
}

bool ConsoleFileDialogs::Confirmed(const FileDialog& dialog, const std::string& question) {
    return mDesktop.ShowMsgBox({question, MsgBoxButtons::YesNo, MsgBoxIcon::Question, dialog.title})
           == MsgBoxResult::Yes;
}

} // namespace qncomm

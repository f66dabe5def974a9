#include "qt/QtFileDialogs.h"
#include "platform/SystemFiles.h"

#include "qt/BusyCursor.h"
#include "qt/Charset.h"
#include "qt/QtDesktop.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

namespace qncomm {
namespace {

/// The toolkit reads the pattern from the end of the filter's text, and wants "*" for every file.
QString FilterText(const FileFilter& filter) {
    QString text = FromHost(filter.text);
    text.remove(QRegularExpression(QStringLiteral("\\s*\\([^()]*\\)\\s*$")));
    const QString pattern =
        filter.pattern == "*.*" ? QStringLiteral("*") : FromHost(filter.pattern);
    return QStringLiteral("%1 (%2)").arg(text, pattern);
}

void SetUp(QFileDialog& window, const FileDialog& asked) {
    const bool save = asked.kind == FileDialogKind::Save;
    window.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    // With an extension to try, what does not exist as typed is judged afterwards.
    window.setFileMode(!save && asked.mustExist && asked.defaultExtension.empty()
                           ? QFileDialog::ExistingFile
                           : QFileDialog::AnyFile);
    window.setOption(QFileDialog::DontConfirmOverwrite, !asked.confirmOverwrite);
    if (!asked.title.empty()) window.setWindowTitle(FromHost(asked.title));
    if (save) window.setDefaultSuffix(FromHost(asked.defaultExtension));
    QStringList filters;
    for (const FileFilter& filter : asked.filters)
        filters << FilterText(filter);
    if (!filters.isEmpty()) window.setNameFilters(filters);
}

std::optional<std::string> Ask(const FileDialog& asked, QString& folder, QWidget* parent) {
    const QPointer<QFileDialog> window(new QFileDialog(parent));
    SetUp(*window, asked);
    if (!folder.isEmpty()) window->setDirectory(folder);
    const bool accepted = window->exec() == QDialog::Accepted;
    if (!window) return std::nullopt;
    const QStringList chosen = window->selectedFiles();
    folder = window->directory().absolutePath();
    delete window.data();
    if (!accepted || chosen.isEmpty()) return std::nullopt;
    return ToHost(chosen.first());
}

/// The choice as it stands after the window, which has asked about replacing the file it returns.
FileChoice Judge(FileDialog asked, const std::string& chosen) {
    asked.confirmOverwrite =
        asked.confirmOverwrite && WithDefaultExtension(asked, chosen, SystemFiles()) != chosen;
    return JudgeChoice(asked, chosen, SystemFiles());
}

} // namespace

std::optional<std::string> QtFileDialogs::ChooseFile(const FileDialog& dialog) {
    const BusyCursor::Pause pause;
    QtDesktop desktop(mParent);
    QString folder = FromHost(dialog.folder);
    while (const auto chosen = Ask(dialog, folder, BoxParent(mParent))) {
        const FileChoice choice = Judge(dialog, *chosen);
        if (choice.next == FileChoice::Next::Take) return choice.path;
        MsgBox box{.text = choice.question,
                   .buttons = MsgBoxButtons::YesNo,
                   .icon = MsgBoxIcon::Question,
                   .title = dialog.title};
        if (choice.next == FileChoice::Next::Refuse)
            box = {.text = "There is no file '" + choice.path + "'.",
                   .icon = MsgBoxIcon::Exclamation,
                   .title = dialog.title};
        if (desktop.ShowMsgBox(box) == MsgBoxResult::Yes) return choice.path;
    }
    return std::nullopt;
}

} // namespace qncomm

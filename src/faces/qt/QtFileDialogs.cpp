#include "qt/QtFileDialogs.h"

#include "common/Text.h"
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

/// The path with the extension where the name has none and the file only exists so.
std::string Completed(const FileDialog& asked, std::string path) {
    if (asked.kind != FileDialogKind::Open || asked.defaultExtension.empty() || FileExists(path)
        || FileNameOf(path).find('.') != std::string::npos)
        return path;
    const bool point = asked.defaultExtension.front() == '.';
    return path + (point ? "" : ".") + asked.defaultExtension;
}

} // namespace

std::optional<std::string> QtFileDialogs::ChooseFile(const FileDialog& dialog) {
    const BusyCursor::Pause pause;
    QtDesktop desktop(mParent);
    QString folder = FromHost(dialog.folder);
    while (const auto chosen = Ask(dialog, folder, BoxParent(mParent))) {
        const std::string path = Completed(dialog, *chosen);
        if (FileExists(path)) return path;
        if (dialog.kind == FileDialogKind::Open && dialog.mustExist) {
            desktop.ShowMsgBox({.text = "There is no file '" + path + "'.",
                                .icon = MsgBoxIcon::Exclamation,
                                .title = dialog.title});
            continue;
        }
        if (!dialog.confirmCreate
            || desktop.ShowMsgBox({.text = "'" + path + "' does not exist. Create it?",
                                   .buttons = MsgBoxButtons::YesNo,
                                   .icon = MsgBoxIcon::Question,
                                   .title = dialog.title})
                   == MsgBoxResult::Yes)
            return path;
    }
    return std::nullopt;
}

} // namespace qncomm

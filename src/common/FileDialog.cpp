#include "common/FileDialog.h"

#include "common/Text.h"

namespace qncomm {

std::string WithDefaultExtension(const FileDialog& dialog, const std::string& sPath,
                                 HostFiles& files) {
    const std::string& extension = dialog.defaultExtension;
    const bool has = FileNameOf(sPath).find('.') != std::string::npos;
    if (extension.empty() || has || (dialog.kind == FileDialogKind::Open && files.Exists(sPath)))
        return sPath;
    return sPath + (extension.starts_with('.') ? "" : ".") + extension;
}

FileChoice JudgeChoice(const FileDialog& dialog, const std::string& sPath, HostFiles& files) {
    using Next = FileChoice::Next;
    const std::string path = WithDefaultExtension(dialog, sPath, files);
    const bool exists = files.Exists(path);
    if (!exists && dialog.mustExist && dialog.kind == FileDialogKind::Open)
        return {path, Next::Refuse, {}};
    if (exists && dialog.confirmOverwrite)
        return {path, Next::Ask, "'" + path + "' already exists. Do you want to replace it?"};
    if (!exists && dialog.confirmCreate)
        return {path, Next::Ask, "'" + path + "' does not exist. Do you want to create it?"};
    return {path, Next::Take, {}};
}

} // namespace qncomm

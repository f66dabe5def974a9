#include "ModuleUpload.h"

#include "PlainCommand.h"
#include "Session.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "console/Charset.h"
#include "platform/SystemFiles.h"

namespace qnctl {
namespace {

/// One line that editors can jump to, and the program line under it.
void ShowModuleError(const Output& out, const qncomm::clsQNModuleError& error) {
    out.Aside(error.QNModuleName + ":" + std::to_string(error.QNErrInLine) + ": error "
              + std::to_string(error.QNErrCode) + ": " + qncomm::Utf8FromPrinter(error.QNErrDesc));
    out.Aside("    " + qncomm::Utf8FromPrinter(error.QNText));
}

Json DocumentOf(const qncomm::clsQNModuleError& error) {
    return {{"file", error.QNModuleName},
            {"line", error.QNErrInLine},
            {"number", error.QNErrCode},
            {"description", qncomm::Utf8FromPrinter(error.QNErrDesc)},
            {"text", qncomm::Utf8FromPrinter(error.QNText)}};
}

/// The module's text with the printer's line ends, which the files of this machine mostly lack.
/// Empty for a file that is missing or empty: the printer layer then tells so.
std::string ModuleText(const std::string& path) {
    std::string text = qncomm::SystemFiles().Exists(path) ? ReadHostFile(path) : std::string();
    if (text.find(qncomm::CrLf) != std::string::npos) return text;
    return qncomm::ReplaceAll(text, "\n", qncomm::CrLf);
}

} // namespace

std::string ReadHostFile(const std::string& path) {
    if (path.empty()) return {};
    if (!qncomm::SystemFiles().Exists(path))
        qncomm::RaiseRuntimeError(qncomm::RtFileNotFound, "qnctl");
    const auto file = qncomm::SystemFiles().Open(path);
    return file->Read(static_cast<std::size_t>(file->Length()));
}

Outcome UploadModule(Session& session, const std::string& file, const std::string& sTarget) {
    Outcome outcome;
    const auto target = ForPrinter(sTarget, outcome);
    if (!target) return outcome;
    qncomm::ModuleUploadArgs module{file, *target, ModuleText(file)};
    const auto errors = session.Control().ModuleUpload(module);
    Json list = Json::array();
    const bool json = session.Out().IsJson();
    for (const auto& error : *errors) {
        if (json)
            list.push_back(DocumentOf(*error));
        else
            ShowModuleError(session.Out(), *error);
    }
    const std::string savedAs = qncomm::Utf8FromPrinter(module.sTargetPath);
    if (json) session.Out().Document({{"target", savedAs}, {"errors", list}});
    if (errors->IsEmpty()) return {};
    const std::size_t count = errors->Count();
    return Refused(ExitStatus::Error, std::to_string(count) + (count == 1 ? " error" : " errors")
                                          + "; " + savedAs + " was not saved.");
}

} // namespace qnctl

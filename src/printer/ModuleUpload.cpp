// Modules: typing one into the printer, and merging several into the working program.

#include "Exchange.h"
#include "RowPace.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "common/modErrorHandling.h"
#include "printer/ModuleReply.h"

#include <exception>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t EndTypingTimeout = 1000;
constexpr std::int32_t SecondOkTimeout = 500;
constexpr std::int32_t MergeTimeout = 45000;
constexpr std::int16_t ReportEvery = 10;

// Typing happens with errors alone shown: no echo, no "Ok", no line number prompt.
constexpr std::string_view BeginTypingLine = "SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF";
constexpr std::string_view EndTypingLines[] = {"IMMEDIATE ON", "SYSVAR(18)=-1:SYSVAR(19)=1"};

/// What a module's line becomes before it is sent.
std::string CleanLine(std::string_view line) {
    return Trim(line);
}

/// The whole text of a module file, which must not be empty.
std::string ModuleText(HostFiles& files, const std::string& path) {
    const std::unique_ptr<HostFile> file = files.Open(path);
    if (file->Length() == 0) RaiseError(ErrModuleEmpty, "clsQuorin,DownloadQNModule");
    return file->Read(static_cast<std::size_t>(file->Length()));
}

/// The errors of a reply as records for the module's lines.
std::shared_ptr<ModuleErrors> CollectErrors(const std::vector<std::string>& reply,
                                            const std::string& moduleName,
                                            const std::vector<std::string>& lines, RowPace pace) {
    auto errors = std::make_shared<ModuleErrors>();
    for (const std::string& line : reply) {
        pace.Next();
        auto found = ParseModuleError(line);
        if (!found) continue;
        found->QNModuleName = moduleName;
        const std::int32_t at = found->QNErrInLine;
        if (at >= 1) found->QNText = LineAt(lines, static_cast<std::size_t>(at) - 1);
        errors->Add(std::make_shared<clsQNModuleError>(std::move(*found)),
                    moduleName + ":" + ToText(at));
    }
    return errors;
}

} // namespace

std::shared_ptr<ModuleErrors> clsQuorin::ModuleUpload(const std::string& sSourcePath,
                                                      std::string& sTargetPath,
                                                      std::string& sModuleText) {
    if (sModuleText.empty() && !mFiles.Exists(sSourcePath))
        RaiseError(ErrModuleName, "clsQuorin, ModuleUpload");
    if (sTargetPath.empty() && sSourcePath.empty())
        RaiseError(ErrModuleName, "clsQuorin,DownloadQNModule");
    if (sModuleText.empty()) sModuleText = ModuleText(mFiles, sSourcePath);
    if (sTargetPath.empty()) sTargetPath = PrinterNameOf(sSourcePath);
    sTargetPath = OnWorkDevice(sTargetPath);
    try {
        Kill(sTargetPath);
    } catch (const QNError&) { // NOLINT(bugprone-empty-catch): there need be no old file
    }

    const std::vector<std::string> lines = SplitKeepEmpty(sModuleText, CrLf);
    auto errors = std::make_shared<ModuleErrors>();
    if (PortClaim claim = Claim()) {
        const Reply reply = TypeModule(lines, "Transfering Module " + sTargetPath);
        claim.Release();
        errors = CollectErrors(reply, sSourcePath, lines, RowPace(Link()));
        if (errors->IsEmpty()) SaveProgram(sTargetPath);
    }
    ReportDone("Ready");
    return errors;
}

/// Types the lines into a cleared working memory; returns what the printer said.
clsQuorin::Reply clsQuorin::TypeModule(const std::vector<std::string>& lines, std::string message) {
    NewProgram();
    BeginTyping();
    try {
        TypeLines(lines, message);
    } catch (...) {
        GiveUpTyping();
        throw;
    }
    Reply reply;
    try {
        reply = EndTyping();
    } catch (const OperationCancelled&) { // much of it may be in the device yet
        GiveUpTyping();
        throw;
    }
    Report(message, 100);
    return reply;
}

/// The printer must not stay in typing mode; the error that has ended the typing is the one to
/// report.
void clsQuorin::GiveUpTyping() {
    try {
        std::string end;
        for (const std::string_view line : EndTypingLines)
            end.append(line).append(CrLf);
        const std::int32_t onTheWay = Link().EndUnfinishedLine(end);
        if (onTheWay > 0) Link().AwaitPromptBehind(onTheWay); // what is typed is not echoed
    } catch (const std::exception& error) {
        mDesktop.Log(std::string("the printer stayed in typing mode: ") + error.what());
    }
}

void clsQuorin::TypeLines(const std::vector<std::string>& lines, std::string& message) {
    std::int16_t reported = 0;
    if (Report(message, reported)) return;
    const double step = 100.0 / static_cast<double>(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        SendLine(CleanLine(lines[i]));
        const std::int16_t percent = ToInt16(step * static_cast<double>(i));
        // 100 is reported when the printer has answered.
        if (percent == reported || percent % ReportEvery != 0 || percent == 100) continue;
        reported = percent;
        if (Report(message, percent)) return;
    }
}

void clsQuorin::BeginTyping() {
    SendLine(BeginTypingLine);
}

/// Both lines may be answered by an "Ok" of their own, and so may the one that began the typing:
/// everything up to a quiet line belongs to this reply and not to the next one.
clsQuorin::Reply clsQuorin::EndTyping() {
    for (const std::string_view line : EndTypingLines)
        SendLine(line);
    Reply reply;
    Link().InputTextUntilQuiet(reply, EndTypingTimeout, SecondOkTimeout);
    return reply;
}

bool clsQuorin::ProgramLink(const Collection<std::string>& cModules, std::string_view sHeader) {
    try {
        PortClaim claim = Claim();
        if (!claim) return false;
        LinkModules(cModules, sHeader);
        claim.Release();
        return true;
    } catch (const QNError& error) {
        mDesktop.Log(error.Description());
        return false;
    }
}

void clsQuorin::LinkModules(const Collection<std::string>& modules, std::string_view header) {
    Report("Program link in progress", NoProgress);
    NewProgram();
    if (!header.empty()) {
        BeginTyping();
        SendLine(header);
        EndTyping();
    }
    for (const std::string& module : modules) {
        if (module.empty()) continue;
        const std::string name = OnWorkDevice(FileNameOf(module));
        Report("Linking module " + name, NoProgress);
        Ask("MERGE" + Quoted(name), MergeTimeout);
    }
}

} // namespace qncomm

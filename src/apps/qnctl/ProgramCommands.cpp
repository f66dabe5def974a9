#include "Command.h"
#include "GivenSettings.h"
#include "ModuleUpload.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "console/Charset.h"
#include "platform/SystemFiles.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qnctl {
namespace {

using qncomm::QNComm;

struct UploadArguments {
    std::string file;
    std::string target;
};

struct LinkArguments {
    std::string header;
    std::vector<std::string> modules;
};

Outcome Check(Session& session) {
    const bool runs = session.Control().IsProgramRunable();
    if (session.Out().IsJson())
        session.Out().Document({{"runnable", runs}});
    else if (runs)
        session.Out().Line("The program can be run.");
    return runs ? Outcome{} : Refused(ExitStatus::Error, "The program cannot be run.");
}

Outcome ShowFreeMemory(Session& session) {
    const std::int32_t bytes = session.Control().Fre();
    if (session.Out().IsJson())
        session.Out().Document({{"bytesFree", bytes}});
    else
        session.Out().Line(std::to_string(bytes));
    return {};
}

Outcome LinkProgram(Session& session, const LinkArguments& arguments) {
    qncomm::Collection<std::string> modules;
    for (const std::string& name : arguments.modules) {
        Outcome outcome;
        auto module = ForPrinter(name, outcome);
        if (!module) return outcome;
        modules.Add(std::move(*module));
    }
    if (!session.Control().ProgramLink(modules, ReadHostFile(arguments.header)))
        return Refused(ExitStatus::Error, "The program was not linked.");
    return Done(session);
}

struct StopTexts {
    const char* line;
    Json by;
};

StopTexts TextsFor(std::int16_t stopped) {
    if (stopped == qncomm::StopByCtrlC) return {"The program was stopped by Ctrl-C", "ctrl-c"};
    if (stopped == qncomm::StopByBreak) return {"The program was stopped by a break", "break"};
    return {"No program was running", nullptr};
}

Outcome NotStopped(const qncomm::QNError& error) {
    return {ExitStatus::NoPrinter, error.Number(), error.Source(),
            "The printer did not come back to its prompt: neither Ctrl-C nor a break helps, or the "
            "settings of the line are other ones."};
}

Outcome StopProgram(Session& session, const std::string& as) {
    if (Outcome given = UseGivenSettings(session.Link(), as); !given.Ok()) return given;
    session.Assembly().OpenPort(); // a port that cannot be opened says why
    std::int16_t stopped = qncomm::StopRefused;
    try {
        stopped = session.Link().StopProgram();
    } catch (const qncomm::QNError& error) {
        if (error.Number() != qncomm::ErrInputTimeout) throw;
        return NotStopped(error);
    }
    if (stopped == qncomm::StopRefused)
        return Refused(ExitStatus::PortUnavailable, "port not available");
    const auto [line, by] = TextsFor(stopped);
    if (session.Out().IsJson())
        session.Out().Document({{"running", !by.is_null()}, {"stoppedBy", by}, {"prompt", true}});
    else
        session.Out().Line(std::string(line) + "; the printer is at its prompt.");
    return {};
}

Command StopCommand() {
    const auto as = std::make_shared<std::string>();
    return {"program stop", "End a running program; searches nothing and types nothing into it",
            Needs::Port, [as](CLI::App& app) { DeclareGivenSettings(app, *as); },
            [as](Session& session) { return StopProgram(session, *as); }};
}

Command UploadCommand() {
    const auto arguments = std::make_shared<UploadArguments>();
    return {"module upload", "Type a module into the printer and save it when it has no errors",
            Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("HOSTFILE", arguments->file, "A file of this machine")->required();
                app.add_option("--target", arguments->target, "Its name on the printer")
                    ->type_name("NAME");
            },
            [arguments](Session& session) {
                return UploadModule(session, arguments->file, arguments->target);
            }};
}

Command LinkCommand() {
    const auto arguments = std::make_shared<LinkArguments>();
    return {
        "module link", "Build the program from modules on the printer", Needs::Printer,
        [arguments](CLI::App& app) {
            app.add_option("--header", arguments->header, "Program lines of this machine")
                ->type_name("FILE");
            app.add_option("NAME", arguments->modules, "The modules, in their order")->required();
        },
        [arguments](Session& session) { return LinkProgram(session, *arguments); }};
}

} // namespace

CommandTable ProgramCommands() {
    return {
        PlainCommand("program new", "Clear the printer's program", {},
                     [](QNComm& control, const Texts&) { control.NewProgram(); }),
        PlainCommand("program run", "Start the printer's program", {},
                     [](QNComm& control, const Texts&) { control.RunProgram(); }),
        StopCommand(),
        {"program check", "Tell whether the program can be run", Needs::Printer, {}, Check},
        PlainCommand("program save", "Save the program on the printer",
                     {{"NAME", "Such as ram:LABEL.PRG"}},
                     [](QNComm& control, const Texts& t) { control.Layer().SaveProgram(t[0]); }),
        PlainCommand("program list", "Write the program's listing to a file",
                     {{"HOSTFILE", "A file of this machine", true}},
                     [](QNComm& control, const Texts& t) { control.UploadQNProgram(t[0]); }),
        {"fre", "Show the free bytes of working memory", Needs::Printer, {}, ShowFreeMemory},
        UploadCommand(),
        LinkCommand(),
    };
}

} // namespace qnctl

#include "Command.h"
#include "Session.h"
#include "ShownTerminal.h"

#include "common/HostPath.h"
#include "common/QNError.h"
#include "console/Charset.h"
#include "console/ConsoleTerminal.h"
#include "platform/SystemFiles.h"

#include <CLI/CLI.hpp>

#include <cstdlib>

#include <unistd.h>

namespace qnctl {
namespace {

struct SendArguments {
    std::string line;
    std::int32_t timeout = 10'000;
};

Outcome Send(Session& session, const SendArguments& arguments) {
    const auto line = qncomm::PrinterFromUtf8(arguments.line);
    if (!line)
        return Refused(ExitStatus::Usage,
                       "LINE holds a character that the printer's Windows-1252 lacks.");
    if (line->find_first_of("\r\n") != std::string::npos)
        return Refused(ExitStatus::Usage, "LINE is one command line; it holds a line end.");
    session.Link().OutputText(*line + "\r\n");
    std::vector<std::string> reply;
    session.Link().InputText(reply, false, arguments.timeout);
    Json lines = Json::array();
    // The first line is the printer's echo, the last one its "Ok".
    for (std::size_t i = 1; i + 1 < reply.size(); ++i) {
        const std::string text = qncomm::Utf8FromPrinter(reply[i]);
        if (session.Out().IsJson())
            lines.push_back(text);
        else
            session.Out().Line(text);
    }
    if (session.Out().IsJson()) session.Out().Document({{"lines", lines}});
    return {};
}

void Greet(Session& session) {
    if (!session.Options().quiet)
        session.Out().Aside("Connected to " + session.PortName()
                                + ". Ctrl-] ends. Ctrl-T ? shows more keys.",
                            "\r\n");
}

/// Why there was no break; empty when there was one.
std::string BreakOn(qncomm::clsDataLink& link) {
    try {
        link.SendBreak();
        return {};
    } catch (const qncomm::QNError& error) {
        return error.Description();
    }
}

qncomm::ConsoleTerminal::Wiring WiringOf(Session& session) {
    const qncomm::PDQComm& serial = session.Serial();
    return {
        STDIN_FILENO,
        STDOUT_FILENO,
        [&session](std::string_view bytes) { return session.Assembly().Viewport().Type(bytes); },
        [&session, &serial] {
            if (session.Interrupted()) throw qncomm::OperationCancelled();
            return serial.PortOpen();
        },
        [&session] { Greet(session); },
        [&session] { return BreakOn(session.Link()); }};
}

Outcome RunTerminal(Session& session, const std::string& capture) {
    const qncomm::PDQComm& serial = session.Serial();
    if (!capture.empty())
        session.Control().SetCaptureToFile(
            qncomm::PathIn(qncomm::SystemFiles().CurrentFolder(), capture));
    session.Status().Clear();
    qncomm::ConsoleTerminal terminal(session.Loop(), WiringOf(session));
    const ShownTerminal shown(session, [&](std::string_view text) { terminal.Show(text); });
    session.Disconnect(); // the terminal's own claim keeps the port open
    const bool done = terminal.Run();
    if (::isatty(STDIN_FILENO) == 1) session.Out().Aside({}); // the prompt gets a line of its own
    if (const int error = terminal.OutputError(); error != 0) return OutputLost(error);
    if (done) return {};
    const auto& failure = serial.LastFailure();
    return {ExitStatus::PortUnavailable, failure ? failure->number : 0, "PDQComm",
            failure ? failure->description : session.PortName() + " was closed."};
}

Command SendCommand() {
    const auto arguments = std::make_shared<SendArguments>();
    return {"send", "Send one command line and print the reply", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("LINE", arguments->line, "The command line")->required();
                app.add_option("--timeout", arguments->timeout,
                               "How long the printer may be silent before the reply is complete")
                    ->type_name("MS")
                    ->check(CLI::Range(1, 3'600'000))
                    ->capture_default_str();
            },
            [arguments](Session& session) { return Send(session, *arguments); }};
}

Command TerminalCommand() {
    const auto capture = std::make_shared<std::string>();
    return {"terminal",
            "Talk to the printer; Ctrl-] ends. Without a terminal, send the lines of the input",
            Needs::Printer,
            [capture](CLI::App& app) {
                app.add_option("--capture", *capture,
                               "Append what the terminal shows, byte for byte")
                    ->type_name("FILE");
            },
            [capture](Session& session) { return RunTerminal(session, *capture); }};
}

} // namespace

CommandTable LineCommands() {
    return {SendCommand(), TerminalCommand()};
}

} // namespace qnctl

// qnsim: a virtual label printer on a pseudo-terminal, a socket or a remote serial port.
#include "common/SafeText.h"
#include "endpoints/PrinterServer.h"
#include "endpoints/PtyEndpoint.h"
#include "endpoints/ReplayServer.h"
#include "endpoints/Rfc2217Endpoint.h"
#include "endpoints/TcpEndpoint.h"
#include "platform/Interrupt.h"
#include "platform/PollLoop.h"
#include "platform/StandardStreams.h"
#include "usage/ShellAnswer.h"
#include "usage/UsageOf.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace qnsim {
namespace {

constexpr int ExitOtherwise = 1; // a replayed session went otherwise than recorded
constexpr int ExitUsage = 2;
constexpr int ExitNoEndpoint = 4;

/// A line on the error stream, whatever a file or a path in it holds.
void Complain(const std::string& what) {
    std::cerr << "qnsim: " << qncomm::WithoutControls(what) << std::endl;
}

struct Arguments {
    std::vector<std::pair<std::string, std::string>> options; // name and value, as in an address
    std::vector<std::string> faults;
    bool pty = false;
    std::string link;
    std::optional<int> tcpPort;
    std::optional<int> rfc2217Port;
    bool everywhere = false;
    std::string replay;
    bool replayDelays = false;
};

/// Every option of an address as one of the command line.
void DeclarePrinter(CLI::App& app, Arguments& arguments) {
    for (const OptionText& option : AllOptions()) {
        const auto take = [&arguments, name = std::string(option.name)](const std::string& value) {
            arguments.options.emplace_back(name, value);
        };
        const std::string flag(option.flag);
        const std::string help(option.help);
        if (option.kind == OptionKind::Switch) {
            app.add_flag_function(
                flag, [take](std::int64_t) { take("on"); }, help);
        } else {
            app.add_option_function<std::vector<std::string>>(
                   flag,
                   [take](const std::vector<std::string>& values) {
                       std::for_each(values.begin(), values.end(), take);
                   },
                   help)
                ->take_all()
                ->expected(1, 1)
                ->delimiter('\0');
        }
    }
    app.add_option("--fault", arguments.faults, "NAME=VALUE: the same as --NAME VALUE")
        ->take_all()
        ->expected(1, 1)
        ->delimiter('\0');
}

void Declare(CLI::App& app, Arguments& arguments) {
    DeclarePrinter(app, arguments);
    auto* pty = app.add_flag("--pty", arguments.pty, "serve on a pseudo-terminal (the default)");
    app.add_option("--link", arguments.link, "a name for the pseudo-terminal");
    auto* tcp = app.add_option("--tcp", arguments.tcpPort,
                               "serve bytes on this loopback port, 0 for any free one");
    auto* remote = app.add_option("--rfc2217", arguments.rfc2217Port,
                                  "serve a remote serial port, with line settings and modem lines, "
                                  "on this loopback port, 0 for any free one");
    tcp->check(CLI::Range(0, 65535))->excludes(pty)->excludes(remote);
    remote->check(CLI::Range(0, 65535))->excludes(pty);
    app.add_flag("--listen-everywhere", arguments.everywhere,
                 "let other machines reach the socket too; there is no password");
    auto* replay =
        app.add_option("--replay", arguments.replay,
                       "answer as the printer in this trace did; ends when all of it was "
                       "played, with status 1 where the host does otherwise");
    app.add_flag("--replay-delays", arguments.replayDelays, "with the delays of the trace")
        ->needs(replay);
}

std::string ReadFaults(Options& options, const std::vector<std::string>& faults) {
    for (const std::string& fault : faults) {
        const auto equals = fault.find('=');
        const std::string value = equals == std::string::npos ? "" : fault.substr(equals + 1);
        std::string error = ApplyOption(options, fault.substr(0, equals), value);
        if (!error.empty()) return error;
    }
    return {};
}

ParseResult ReadOptions(const Arguments& arguments) {
    Options options;
    for (const auto& [name, value] : arguments.options) {
        std::string error = ApplyOption(options, name, value);
        if (!error.empty()) return {std::nullopt, std::move(error)};
    }
    std::string error = ReadFaults(options, arguments.faults);
    if (error.empty()) error = CheckOptions(options);
    if (!error.empty()) return {std::nullopt, std::move(error)};
    return {std::move(options), {}};
}

OpenedEndpoint OpenEndpoint(qncomm::Reactor& loop, const Arguments& arguments) {
    const Reach reach = arguments.everywhere ? Reach::Everywhere : Reach::ThisMachine;
    if (arguments.rfc2217Port) return Rfc2217Endpoint::Open(loop, *arguments.rfc2217Port, reach);
    if (arguments.tcpPort) return TcpEndpoint::Open(loop, *arguments.tcpPort, reach);
    return PtyEndpoint::Open(loop, arguments.link);
}

/// Has a signal end the server while the returned object lives.
template <class Server>
std::unique_ptr<qncomm::FdWatch> StopOn(qncomm::Interrupt& interrupt, qncomm::Reactor& loop,
                                        Server& server) {
    return loop.Watch(interrupt.Handle(), {.readable = true},
                      [&server](qncomm::FdEvents) { server.Stop(); });
}

int Replay(const Arguments& arguments) {
    qncomm::TraceReading reading = qncomm::ReadTrace(arguments.replay);
    if (!reading.result.Ok()) {
        Complain(reading.result.text);
        return ExitUsage;
    }
    qncomm::Interrupt interrupt;
    qncomm::PollLoop loop;
    const OpenedEndpoint opened = OpenEndpoint(loop, arguments);
    if (!opened.endpoint) {
        Complain(opened.error);
        return ExitNoEndpoint;
    }
    std::cout << opened.endpoint->Address() << std::endl;
    TracePlayer player(std::move(reading.records), arguments.replayDelays);
    ReplayServer server(player, *opened.endpoint, loop);
    const auto stop = StopOn(interrupt, loop, server);
    const std::string ended = server.Run();
    if (ended.empty()) return 0;
    Complain(arguments.replay + ": " + ended);
    return ExitOtherwise;
}

int Serve(const Options& options, const Arguments& arguments) {
    qncomm::Interrupt interrupt;
    qncomm::PollLoop loop;
    const OpenedEndpoint opened = OpenEndpoint(loop, arguments);
    if (!opened.endpoint) {
        Complain(opened.error);
        return ExitNoEndpoint;
    }
    VirtualPrinter printer(options);
    if (!printer.Problem().empty()) {
        Complain(printer.Problem());
        return ExitNoEndpoint;
    }
    std::cout << opened.endpoint->Address() << std::endl;
    PrinterServer server(printer, *opened.endpoint, loop);
    const auto stop = StopOn(interrupt, loop, server);
    const bool stopped = server.Run();
    if (!stopped) Complain("the line was cut");
    if (!printer.Problem().empty()) Complain(printer.Problem());
    return printer.Problem().empty() ? 0 : ExitOtherwise;
}

int Run(int argc, char** argv) {
    CLI::App app("A virtual label printer. Prints where it can be reached and serves until it is "
                 "ended with Ctrl-C.",
                 "qnsim");
    Arguments arguments;
    Declare(app, arguments);
    app.set_version_flag("--version", "qnsim " QN_VERSION);
    if (const auto asked = qncomm::AnswerShell(
            {argv + 1, argv + argc}, [&app] { return qncomm::UsageOf(app); }, QN_VERSION)) {
        std::cout << asked->text << std::flush;
        return asked->status;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : ExitUsage;
    }
    if (!arguments.replay.empty()) return Replay(arguments);
    const ParseResult parsed = ReadOptions(arguments);
    if (parsed.options) return Serve(*parsed.options, arguments);
    Complain(parsed.error);
    return ExitUsage;
}

} // namespace
} // namespace qnsim

int main(int argc, char** argv) {
    qncomm::PrepareStandardStreams();
    try {
        return qnsim::Run(argc, argv);
    } catch (const std::exception& error) {
        qnsim::Complain(error.what());
        return 1;
    }
}

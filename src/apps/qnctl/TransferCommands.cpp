#include "CarriedTransfer.h"
#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"
#include "ShownTerminal.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace qnctl {
namespace {

using qncomm::BinaryKermit;
using qncomm::BinaryZModem;

struct TransferArguments {
    std::string hostFile;
    std::string printerName;
    std::string protocol = "zmodem";
    bool manual = false;
    bool resume = false;
};

using Arguments = std::shared_ptr<TransferArguments>;

std::int16_t ProtocolOf(const TransferArguments& arguments) {
    return arguments.protocol == "kermit" ? BinaryKermit : BinaryZModem;
}

/// With the port open as for a shown terminal, and nothing sent.
Outcome OnOpenLine(Session& session, const TransferArguments& arguments,
                   const std::function<void()>& transfer) {
    session.Assembly().OpenPort(); // says why when it cannot be opened
    const ShownTerminal shown(session, {});
    return CarryTransfer(session, arguments.resume, transfer);
}

Outcome SendKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    if (arguments.manual)
        return OnOpenLine(session, arguments,
                          [&] { session.Control().KermitUpload(arguments.hostFile, *name, true); });
    if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
    return SendByKermit(session, arguments.hostFile, *name, arguments.resume);
}

Outcome ReceiveKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    return FetchByKermit(session, *name, arguments.hostFile, arguments.resume);
}

void DeclareResume(CLI::App& app, const Arguments& arguments) {
    app.add_flag("--resume", arguments->resume,
                 "Go on where an earlier try ended, and keep FILE.part for the next");
}

void DeclareProtocol(CLI::App& app, const Arguments& arguments) {
    app.add_option("--protocol", arguments->protocol, "What the printer's side speaks")
        ->required()
        ->transform(CLI::IsMember({"zmodem", "kermit"}, CLI::ignore_case));
}

Command KermitSend() {
    const auto arguments = std::make_shared<TransferArguments>();
    return {
        "kermit send", "Send a file to the printer by Kermit", Needs::Port,
        [arguments](CLI::App& app) {
            app.add_option("HOSTFILE", arguments->hostFile, "A file of this machine")->required();
            app.add_option("PRINTERNAME", arguments->printerName, "Its name there, such as c:NAME");
            app.add_flag("--manual", arguments->manual,
                         "The printer's side has been started by hand: send no command");
            DeclareResume(app, arguments);
        },
        [arguments](Session& session) { return SendKermit(session, *arguments); }};
}

Command KermitReceive() {
    const auto arguments = std::make_shared<TransferArguments>();
    return {
        "kermit receive", "Fetch a file from the printer by Kermit", Needs::Printer,
        [arguments](CLI::App& app) {
            app.add_option("PRINTERNAME", arguments->printerName, "The printer's file")->required();
            app.add_option("HOSTFILE", arguments->hostFile, "Where it goes on this machine")
                ->required();
            DeclareResume(app, arguments);
        },
        [arguments](Session& session) { return ReceiveKermit(session, *arguments); }};
}

Command BinarySend() {
    const auto arguments = std::make_shared<TransferArguments>();
    return {
        "binary send", "Send a file to a printer that is waiting for one", Needs::Port,
        [arguments](CLI::App& app) {
            app.add_option("HOSTFILE", arguments->hostFile, "A file of this machine")->required();
            DeclareProtocol(app, arguments);
            DeclareResume(app, arguments);
        },
        [arguments](Session& session) {
            return OnOpenLine(session, *arguments, [&] {
                session.Control().BinaryUpload(arguments->hostFile, ProtocolOf(*arguments));
            });
        }};
}

Command BinaryReceive() {
    const auto arguments = std::make_shared<TransferArguments>();
    return {"binary receive", "Receive a file from a printer that is sending one", Needs::Port,
            [arguments](CLI::App& app) {
                app.add_option("HOSTFILE", arguments->hostFile, "Where it goes on this machine")
                    ->required();
                DeclareProtocol(app, arguments);
                DeclareResume(app, arguments);
            },
            [arguments](Session& session) {
                return OnOpenLine(session, *arguments, [&] {
                    session.Control().BinaryDownload(arguments->hostFile, ProtocolOf(*arguments));
                });
            }};
}

} // namespace

CommandTable TransferCommands() {
    return {KermitSend(), KermitReceive(), BinarySend(), BinaryReceive()};
}

} // namespace qnctl

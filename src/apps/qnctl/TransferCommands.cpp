#include "CancelledTransfer.h"
#include "Command.h"
#include "FileListing.h"
#include "PlainCommand.h"
#include "Session.h"
#include "ShownTerminal.h"
#include "TransferLines.h"

#include "common/QNError.h"
#include "common/modErrorHandling.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

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

/// Runs the transfer and tells, when it failed, why the line's side thinks so.
Outcome Carry(Session& session, const TransferArguments& arguments,
              const std::function<void()>& transfer) {
    session.Assembly().SetTransferPreferences({.resume = arguments.resume});
    qncomm::TransferProgress& progress = session.FollowTransfer(ProgressLines(session));
    progress.Show("Waiting for the printer's side of the transfer", 0);
    const auto cancel = CancelWithTheProgram(session);
    try {
        transfer();
    } catch (const qncomm::OperationCancelled&) {
        session.Link().AwaitPrompt(progress.Whole().bytes > 0);
        throw;
    } catch (const qncomm::QNError& error) {
        if (session.Interrupted()) return Cancelled();
        Outcome failed = session.Failed(error);
        const std::string& reason = session.Serial().TransferReason();
        // A lost port and a printer's error are their own reason.
        if (failed.status == ExitStatus::Error && !reason.empty()
            && error.Number() <= qncomm::PrinterErrorBase)
            failed.message += " (" + reason + ")";
        return failed;
    }
    if (session.Out().IsJson()) session.Out().Document(ResultLine(progress));
    return {};
}

/// With the port open as for a shown terminal, and nothing sent.
Outcome OnOpenLine(Session& session, const TransferArguments& arguments,
                   const std::function<void()>& transfer) {
    session.Assembly().OpenPort(); // says why when it cannot be opened
    const ShownTerminal shown(session, {});
    return Carry(session, arguments, transfer);
}

/// The device of a printer's file name, with its colon; empty when it names none.
std::string DeviceOf(const std::string& name) {
    return name.substr(0, name.find(':') + 1);
}

/// Whether a device that is named is worth asking for its files: of one that is not there, or of a
/// file that it does not hold, the printer says so at its prompt, and the protocol would be waited
/// for in vain until its patience is over.
bool MayLook(Session& session, const std::string& name) {
    return !DeviceOf(name).empty() && session.Control().CanList();
}

Outcome SendKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    const auto send = [&] {
        session.Control().KermitUpload(arguments.hostFile, *name, arguments.manual);
    };
    if (arguments.manual) return OnOpenLine(session, arguments, send);
    if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
    if (MayLook(session, *name)) FilesOn(session, DeviceOf(*name)); // raises what is wrong
    return Carry(session, arguments, send);
}

Outcome ReceiveKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    if (MayLook(session, *name)) {
        const std::string device = DeviceOf(*name);
        const std::string file = name->substr(device.size());
        if (const auto files = FilesOn(session, device, true); !files->Contains(file))
            return Refused(ExitStatus::Error, "There is no file " + file + " on " + device);
    }
    return Carry(session, arguments, [&] {
        if (session.Control().CanList())
            session.Control().KermitDownload(*name, arguments.hostFile);
        else // the control would look for the size, and tell the user in a box that it cannot
            session.Printer().KermitDownload(*name, arguments.hostFile);
    });
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

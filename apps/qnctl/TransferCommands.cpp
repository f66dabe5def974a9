#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"
#include "TransferLines.h"

#include "common/QNError.h"
#include "common/StopWatch.h"

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

/// Cancels the transfer as soon as Ctrl-C is pressed, not with its next whole percent: what tells
/// the printer is to leave the line before the port is closed.
std::unique_ptr<qncomm::RunningTimer> CancelWithTheProgram(Session& session) {
    constexpr std::int32_t lookMs = 50;
    return session.Loop().StartTimer(lookMs, [&session] {
        if (session.Interrupted()) session.Serial().SetTransferState(qncomm::TransferAborting);
    });
}

/// Waits until a printer that was told of the cancel is back at its prompt, so that the next
/// command finds it there. Not for long: the person has asked for the end.
void AwaitPrompt(Session& session) {
    constexpr std::int32_t mostMs = 400;
    constexpr std::string_view prompt = "Ok\r\n";
    const qncomm::StopWatch watch(session.Loop());
    std::string text = session.Serial().Read();
    while (text.find(prompt) == std::string::npos) {
        const std::int32_t left = watch.UntilExceeds(mostMs);
        if (left == 0 || !session.Serial().PortOpen()) return;
        session.Serial().WaitForReceive(left);
        text += session.Serial().Read();
    }
}

/// Runs the transfer and tells, when it failed, why the line's side thinks so.
Outcome Carry(Session& session, const TransferArguments& arguments,
              const std::function<void()>& transfer) {
    session.Serial().SetTransferPreferences({.resume = arguments.resume});
    qncomm::TransferProgress& progress = session.FollowTransfer(ProgressLines(session));
    const auto cancel = CancelWithTheProgram(session);
    try {
        transfer();
    } catch (const qncomm::OperationCancelled&) {
        AwaitPrompt(session);
        throw;
    } catch (const qncomm::QNError& error) {
        if (session.Interrupted()) return Cancelled();
        const std::string& reason = session.Serial().TransferReason();
        if (reason.empty()) throw;
        return {ExitStatus::Error, error.Number(), error.Source(),
                error.Description() + " (" + reason + ")"};
    }
    if (session.Out().IsJson()) session.Out().Document(ResultLine(progress));
    return {};
}

/// The port open as for a shown terminal, with nothing sent.
class OpenLine {
  public:
    explicit OpenLine(Session& session) : mLink(session.Link()) { mLink.SetTerminalActive(true); }
    ~OpenLine() { mLink.SetTerminalActive(false); }
    OpenLine(const OpenLine&) = delete;
    OpenLine& operator=(const OpenLine&) = delete;

  private:
    qncomm::clsDataLink& mLink;
};

Outcome Binary(Session& session, const TransferArguments& arguments,
               const std::function<void()>& transfer) {
    session.Serial().SetPortOpen(true); // says why when it cannot be opened
    const OpenLine line(session);
    return Carry(session, arguments, transfer);
}

Outcome SendKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    if (arguments.manual)
        return Binary(session, arguments,
                      [&] { session.Link().KermitUpload(arguments.hostFile, *name, true); });
    if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
    return Carry(session, arguments,
                 [&] { session.Printer().KermitUpload(arguments.hostFile, *name); });
}

/// Looks for the file where the printer can say what it holds: a printer that has nothing to send
/// would be waited for until the protocol's patience is over. Sets the size of a file that is
/// there.
Outcome FindPrintersFile(Session& session, const std::string& name, std::int32_t& size) {
    const std::size_t device = name.find(':') + 1;
    if (device == 0 || !session.PrinterLists()) return {};
    std::string listed = name.substr(0, device);
    session.Printer().Files(listed, false, true);
    const auto files = session.Printer().PrinterDevices()->Item(listed)->Files;
    const std::string file = name.substr(device);
    if (!files->Contains(file))
        return Refused(ExitStatus::Error, "There is no file " + file + " on " + listed);
    size = files->Item(file)->Size;
    return {};
}

Outcome ReceiveKermit(Session& session, const TransferArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.printerName, outcome);
    if (!name) return outcome;
    std::int32_t size = 0;
    if (Outcome there = FindPrintersFile(session, *name, size); !there.Ok()) return there;
    return Carry(session, arguments,
                 [&] { session.Printer().KermitDownload(*name, arguments.hostFile, size); });
}

void DeclareResume(CLI::App& app, const Arguments& arguments) {
    app.add_flag("--resume", arguments->resume,
                 "Go on where an earlier try ended, and keep FILE.part for the next");
}

void DeclareProtocol(CLI::App& app, const Arguments& arguments) {
    app.add_option("--protocol", arguments->protocol, "zmodem or kermit")
        ->required()
        ->check(CLI::IsMember({"zmodem", "kermit"}));
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
            return Binary(session, *arguments, [&] {
                session.Link().BinaryUpload(arguments->hostFile, ProtocolOf(*arguments));
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
                return Binary(session, *arguments, [&] {
                    session.Link().BinaryDownload(arguments->hostFile, ProtocolOf(*arguments));
                });
            }};
}

} // namespace

CommandTable TransferCommands() {
    return {KermitSend(), KermitReceive(), BinarySend(), BinaryReceive()};
}

} // namespace qnctl

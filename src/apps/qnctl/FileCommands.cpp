#include "Command.h"
#include "FileListing.h"
#include "LoadProgress.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "console/Charset.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qnctl {
namespace {

using qncomm::clsPrinterDevice;
using qncomm::QNComm;
using Align = Output::Align;

struct FilesArguments {
    std::string device;
    bool system = false;
};

std::string Number(std::int32_t value) {
    return std::to_string(value);
}

/// Lists a device into its record. A device that the printer refuses to list (an empty card slot)
/// is told by the printer's words.
std::string ListDevice(Session& session, const clsPrinterDevice& device) {
    try {
        FilesOn(session, device.Name);
    } catch (const qncomm::QNError& error) {
        if (error.Number() < qncomm::PrinterErrorBase) throw;
        return qncomm::Utf8FromPrinter(error.Description());
    }
    return {};
}

Outcome ShowDevices(Session& session) {
    session.Control().Devices(); // fills the table
    const bool lists = session.Control().CanList();
    Json list = Json::array();
    std::vector<Output::Row> rows{{"DEVICE", "FILES", "USED", "FREE", ""}};
    for (const auto& device : *session.Printer().PrinterDevices()) {
        Json entry{{"name", device->Name}, {"present", device->Valid}};
        if (device->Valid && lists) {
            const std::string refusal = ListDevice(session, *device);
            const bool known = refusal.empty();
            entry["files"] = known ? Json(device->Files->Count()) : Json();
            entry["bytesUsed"] = known ? Json(device->BytesUsed) : Json();
            entry["bytesFree"] = known ? Json(device->BytesFree) : Json();
            if (!known) entry["error"] = refusal;
            rows.push_back({device->Name, known ? std::to_string(device->Files->Count()) : "-",
                            known ? Number(device->BytesUsed) : "-",
                            known ? Number(device->BytesFree) : "-", refusal});
        } else if (device->Valid) {
            rows.push_back({device->Name, "-", "-", "-", ""});
        }
        list.push_back(entry);
    }
    if (session.Out().IsJson())
        session.Out().Document({{"devices", list}});
    else
        session.Out().Table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Left},
                            rows);
    return {};
}

Json DocumentOf(const qncomm::PrinterFiles& files) {
    Json list = Json::array();
    for (const auto& file : files)
        list.push_back({{"name", qncomm::Utf8FromPrinter(file->Name)}, {"size", file->Size}});
    return list;
}

void ShowFileTable(const Output& out, const clsPrinterDevice& device) {
    std::vector<Output::Row> rows;
    for (const auto& file : *device.Files)
        rows.push_back({qncomm::Utf8FromPrinter(file->Name), Number(file->Size)});
    out.Table({Align::Left, Align::Right}, rows);
    const std::size_t count = device.Files->Count();
    out.Line(std::to_string(count) + (count == 1 ? " file, " : " files, ")
             + Number(device.BytesUsed) + " bytes used, " + Number(device.BytesFree)
             + " bytes free");
}

Outcome ShowFiles(Session& session, const FilesArguments& arguments) {
    Outcome outcome;
    const auto given = ForPrinter(arguments.device, outcome);
    if (!given) return outcome;
    FilesOn(session, *given, arguments.system);
    if (!session.Control().CanList()) return Done(session); // a box has told so
    const std::string name = *given + (given->ends_with(':') ? "" : ":");
    const auto device = session.Printer().PrinterDevices()->Item(name);
    if (session.Out().IsJson())
        session.Out().Document({{"device", device->Name},
                                {"files", DocumentOf(*device->Files)},
                                {"bytesUsed", device->BytesUsed},
                                {"bytesFree", device->BytesFree}});
    else
        ShowFileTable(session.Out(), *device);
    return {};
}

Command FilesCommand() {
    const auto arguments = std::make_shared<FilesArguments>();
    return {"files", "List the files of a device", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("DEVICE", arguments->device, "Such as ram: or c:")->required();
                app.add_flag("--system", arguments->system, "System files, too");
            },
            [arguments](Session& session) { return ShowFiles(session, *arguments); }};
}

Outcome NotDone() {
    return Refused(ExitStatus::Error, "Nothing was erased.");
}

Outcome Format(Session& session, const FilesArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.device, outcome);
    if (!name) return outcome;
    if (!session.Ask("Format", "Erase all files on " + arguments.device + "?")) return NotDone();
    session.Control().FormatDev(*name, arguments.system);
    return Done(session);
}

Outcome FormatAll(Session& session, const FilesArguments& arguments) {
    if (!session.Ask("Format", "Erase all files on all devices of the printer?")) return NotDone();
    session.Control().Devices(); // fills the table: an empty one would format nothing
    session.Printer().FormatAll(arguments.system);
    return Done(session);
}

Command FormatCommand() {
    const auto arguments = std::make_shared<FilesArguments>();
    return {"format", "Erase a device; asks first", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("DEVICE", arguments->device, "Such as ram: or tmp:")->required();
                app.add_flag("--system", arguments->system, "System files, too");
            },
            [arguments](Session& session) { return Format(session, *arguments); }};
}

Command FormatAllCommand() {
    const auto arguments = std::make_shared<FilesArguments>();
    return {"format-all", "Erase all devices; asks first", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_flag("--system", arguments->system, "System files, too");
            },
            [arguments](Session& session) { return FormatAll(session, *arguments); }};
}

Command FileloadCommand() {
    const auto file = std::make_shared<std::string>();
    return {"fileload", "Send a file into the printer's storage", Needs::Printer,
            [file](CLI::App& app) {
                app.add_option("FILE", *file, "A file of this machine")->required();
            },
            [file](Session& session) {
                return CarryLoad(session, [&] { session.Control().Layer().Fileload(*file); });
            }};
}

} // namespace

CommandTable FileCommands() {
    return {
        {"devices", "List the printer's storage devices", Needs::Printer, {}, ShowDevices},
        FilesCommand(),
        PlainCommand("copy", "Copy a file on the printer", {{"SRC", "From"}, {"DST", "To"}},
                     [](QNComm& control, const Texts& t) { control.CopyFile(t[0], t[1]); }),
        PlainCommand("rename", "Rename a file on the printer, also across devices",
                     {{"OLD", "Its name"}, {"NEW", "Its new name"}},
                     [](QNComm& control, const Texts& t) { control.RenameFile(t[0], t[1]); }),
        PlainCommand("kill", "Delete a file", {{"NAME", "Such as ram:OLD.PRG"}},
                     [](QNComm& control, const Texts& t) { control.KillQN(t[0]); }),
        PlainCommand("chdir", "Make a device the current one", {{"DEVICE", "Such as ram:"}},
                     [](QNComm& control, const Texts& t) { control.ChDir(t[0]); }),
        FormatCommand(),
        FormatAllCommand(),
        FileloadCommand(),
    };
}

} // namespace qnctl

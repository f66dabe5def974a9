// sync: a folder of this machine on a device of the printer, sending only what differs.
#include "CarriedTransfer.h"
#include "Command.h"
#include "HostFileKind.h"
#include "ModuleUpload.h"
#include "Places.h"
#include "PlainCommand.h"
#include "SentLedger.h"
#include "Session.h"
#include "Travel.h"

#include "common/HostPath.h"
#include "common/Text.h"
#include "platform/SystemErrors.h"
#include "platform/TemporaryFolder.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace qnctl {
namespace {

namespace fs = std::filesystem;

struct SyncArguments {
    std::string folder;
    std::string device;
    bool dry = false;
    bool readBack = false;
};

/// A file of the folder.
struct HereFile {
    std::string name;
    std::string path;
    std::uintmax_t size = 0;
    std::int64_t modified = 0; ///< ns since 1970 (UTC)
};

/// Sizes on the device by upper-case names.
using OnDevice = std::map<std::string, std::int32_t>;

OnDevice ListingOf(Session& session, const Place& device) {
    OnDevice sizes;
    for (const ListedFile& file : ListedAt(session, device))
        sizes[qncomm::UpperCase(file.place.name)] = file.size;
    return sizes;
}

/// The regular files of a folder by name, hidden ones apart.
std::optional<std::vector<HereFile>> FilesIn(const std::string& folder, Outcome& outcome) {
    std::error_code error;
    std::vector<HereFile> files;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code gone;
        if (name.starts_with('.') || !entry->is_regular_file(gone)) continue;
        const auto size = entry->file_size(gone);
        const auto modified = entry->last_write_time(gone);
        if (gone) continue;
        files.push_back({name, qncomm::PathIn(folder, name), size,
                         std::chrono::duration_cast<std::chrono::nanoseconds>(
                             fs::file_time_type::clock::to_sys(modified).time_since_epoch())
                             .count()});
    }
    if (error) {
        outcome =
            Refused(ExitStatus::Error, folder + ": " + qncomm::SystemText(error.value()) + ".");
        return std::nullopt;
    }
    std::ranges::sort(files, {}, &HereFile::name);
    return files;
}

/// Why a file is to be sent; empty when printer and ledger say that it need not be. A file that was
/// touched and holds what it held is noted with its new time.
std::string ReasonToSend(const HereFile& file, const OnDevice& there, SentLedger& ledger) {
    const SentFile* const sent = ledger.Find(file.name);
    const auto listed = there.find(qncomm::UpperCase(file.name));
    if (listed == there.end()) return sent == nullptr ? "new" : "missing on the printer";
    if (sent == nullptr) return "never sent from here";
    if (listed->second != sent->onPrinter) return "changed on the printer";
    if (file.size != sent->size) return "changed";
    if (file.modified == sent->modified) return {};
    if (SumOf(ReadHostFile(file.path)) != sent->sum) return "changed";
    SentFile same = *sent;
    same.modified = file.modified;
    ledger.Note(file.name, same);
    return {};
}

/// What differs, in the folder's order.
struct ToSend {
    HereFile file;
    std::string reason;
};

/// Fetches what was sent and compares it. A module is kept as the printer writes it, so only what
/// went byte for byte can be compared.
Outcome ReadBack(Session& session, const HereFile& file, const Place& there) {
    if (KindOf(file.path) == HostFileKind::Program) return {};
    const qncomm::TemporaryFolder folder;
    const std::string path = qncomm::PathIn(folder.Path(), "file");
    if (Outcome fetched = FetchByKermit(session, there.Full(), path, false); !fetched.Ok())
        return fetched;
    if (ReadHostFile(path) == ReadHostFile(file.path)) return {};
    return Refused(ExitStatus::Error, there.Shown() + " does not hold what was sent.");
}

/// Sends a file and notes it with the size that the printer lists for it.
Outcome SendOne(Session& session, const HereFile& file, const Place& device, bool readBack,
                SentLedger& ledger) {
    Outcome outcome;
    const auto name = ForPrinter(file.name, outcome);
    if (!name) return outcome;
    const std::string sum = SumOf(ReadHostFile(file.path));
    const Place there{device.device, *name};
    if (outcome = Send(session, {{{}, file.path}, there}, {}); !outcome.Ok()) return outcome;
    const auto listed = ListedAt(session, there);
    if (listed.empty())
        return Refused(ExitStatus::Error, there.Shown() + " was sent, and is not listed.");
    if (readBack)
        if (outcome = ReadBack(session, file, there); !outcome.Ok()) return outcome;
    ledger.Note(file.name, {file.size, file.modified, sum, listed.front().size});
    ledger.Save(); // whatever becomes of the next one
    return {};
}

void Tell(Session& session, const std::vector<ToSend>& differing, std::size_t all, bool dry) {
    if (session.Out().IsJson()) {
        Json list = Json::array();
        for (const ToSend& each : differing)
            list.push_back({{"name", each.file.name}, {"reason", each.reason}});
        session.Out().Document(
            {{dry ? "toSend" : "sent", list}, {"unchanged", all - differing.size()}});
        return;
    }
    if (dry)
        for (const ToSend& each : differing)
            session.Out().Line(each.file.name + ": " + each.reason);
    session.Out().Line(std::to_string(differing.size()) + " of " + std::to_string(all)
                       + (dry ? " files to send" : " files sent"));
}

Outcome Sync(Session& session, const SyncArguments& arguments) {
    Outcome outcome;
    const auto device = PrinterPlaceOf(arguments.device, outcome);
    if (!device) return outcome;
    if (!device->name.empty())
        return Refused(ExitStatus::Usage, "Files go to a device, such as " + device->device + ".");
    const auto files = FilesIn(arguments.folder, outcome);
    if (!files) return outcome;
    SentLedger ledger(qncomm::FolderOf(session.Store().Path()), session.Port().address,
                      device->device, arguments.folder);
    const OnDevice there = ListingOf(session, *device);
    std::vector<ToSend> differing;
    for (const HereFile& file : *files)
        if (std::string reason = ReasonToSend(file, there, ledger); !reason.empty())
            differing.push_back({file, reason});
    if (!arguments.dry) {
        for (const ToSend& each : differing)
            if (outcome = SendOne(session, each.file, *device, arguments.readBack, ledger);
                !outcome.Ok())
                return outcome;
        ledger.Save();
    }
    Tell(session, differing, files->size(), arguments.dry);
    return {};
}

} // namespace

CommandTable SyncCommands() {
    const auto arguments = std::make_shared<SyncArguments>();
    return {
        {"sync", "Send the files of a folder that differ from what was sent before", Needs::Printer,
         [arguments](CLI::App& app) {
             app.add_option("FOLDER", arguments->folder, "A folder of this machine")->required();
             app.add_option("DEVICE", arguments->device, "Such as c:")->required();
             app.add_flag("--dry-run", arguments->dry, "Only tell what would be sent");
             app.add_flag("--read-back", arguments->readBack,
                          "Fetch what was sent byte for byte, and compare");
         },
         [arguments](Session& session) { return Sync(session, *arguments); }}};
}

} // namespace qnctl

// Files between this machine and the printer, by whatever carries them best: put, get, cp, cat.
#include "CarriedTransfer.h"
#include "Command.h"
#include "ModuleUpload.h"
#include "Places.h"
#include "PlainCommand.h"
#include "Session.h"
#include "Travel.h"

#include "common/HostPath.h"
#include "common/Text.h"
#include "console/Charset.h"
#include "platform/TemporaryFolder.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qnctl {
namespace {

using Words = std::vector<std::string>;

struct TravelArguments {
    Words places;
    Travel travel;
};

Outcome Carry(Session& session, const Journey& journey, const Travel& travel) {
    if (journey.to.OnPrinter() && !journey.from.OnPrinter()) return Send(session, journey, travel);
    if (journey.from.OnPrinter() && !journey.to.OnPrinter()) return Fetch(session, journey, travel);
    if (!journey.from.OnPrinter())
        return Refused(ExitStatus::Usage, "Both are on this machine: " + journey.from.name + ", "
                                              + journey.to.name + ".");
    const std::string name = journey.to.name.empty() ? journey.from.name : journey.to.name;
    session.Control().CopyFile(journey.from.Full(), journey.to.device + name);
    return Done(session);
}

bool IsFolder(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

/// The files of this machine or the printer that the words mean.
std::optional<std::vector<Place>> Sources(Session& session, std::span<const std::string> words,
                                          Outcome& outcome) {
    std::vector<Place> all;
    for (const std::string& word : words) {
        const auto place = PlaceOf(word, outcome);
        if (!place) return std::nullopt;
        if (!place->OnPrinter()) {
            all.push_back(*place);
            continue;
        }
        const auto found = FilesAt(session, *place, outcome);
        if (!found) return std::nullopt;
        all.insert(all.end(), found->begin(), found->end());
    }
    return all;
}

/// Each file to the place that was named last; several go to a device or a folder.
Outcome CarryAll(Session& session, const std::vector<Place>& sources, const Place& to,
                 const Travel& travel) {
    const bool folder = !to.OnPrinter() && IsFolder(to.name);
    if (sources.size() > 1 && !folder && !(to.OnPrinter() && to.name.empty()))
        return Refused(ExitStatus::Usage,
                       "Several files go to a device or a folder, not to " + to.Shown() + ".");
    for (const Place& from : sources) {
        Journey journey{from, to};
        if (folder) journey.to.name = PathFor(from, to.name);
        if (Outcome outcome = Carry(session, journey, travel); !outcome.Ok()) return outcome;
    }
    return {};
}

Outcome Copy(Session& session, const TravelArguments& arguments) {
    Outcome outcome;
    const auto to = PlaceOf(arguments.places.back(), outcome);
    if (!to) return outcome;
    const std::span words(arguments.places);
    const auto sources = Sources(session, words.first(words.size() - 1), outcome);
    return sources ? CarryAll(session, *sources, *to, arguments.travel) : outcome;
}

/// The last word is where files go if it is on the printer, else they go where their kind belongs.
Outcome Put(Session& session, const TravelArguments& arguments) {
    Outcome outcome;
    std::span words(arguments.places);
    auto to = PlaceOf(words.back(), outcome);
    if (!to) return outcome;
    if (to->OnPrinter())
        words = words.first(words.size() - 1);
    else
        to = Place{};
    if (words.empty()) return Refused(ExitStatus::Usage, "No file of this machine is named.");
    for (const std::string& word : words)
        if (Outcome sent = Send(session, {{{}, word}, *to}, arguments.travel); !sent.Ok())
            return sent;
    return {};
}

/// The last word is where files go if it is on this machine, else they go to the current folder.
Outcome Get(Session& session, const TravelArguments& arguments) {
    Outcome outcome;
    std::span words(arguments.places);
    auto to = PlaceOf(words.back(), outcome);
    if (!to) return outcome;
    if (to->OnPrinter())
        to = Place{{}, "."};
    else
        words = words.first(words.size() - 1);
    if (words.empty()) return Refused(ExitStatus::Usage, "No file of the printer is named.");
    for (const std::string& word : words)
        if (!PrinterPlaceOf(word, outcome)) return outcome;
    const auto sources = Sources(session, words, outcome);
    return sources ? CarryAll(session, *sources, *to, arguments.travel) : outcome;
}

Outcome Show(Session& session, const Words& words) {
    if (session.Out().IsJson())
        return Refused(ExitStatus::Usage, "\"cat\" writes what the files hold; get has --json.");
    Outcome outcome;
    for (const std::string& word : words)
        if (!PrinterPlaceOf(word, outcome)) return outcome;
    const auto sources = Sources(session, words, outcome);
    if (!sources) return outcome;
    const qncomm::TemporaryFolder folder;
    const std::string path = qncomm::PathIn(folder.Path(), "file");
    for (const Place& file : *sources) {
        if (outcome = FetchByKermit(session, file.Full(), path, false); !outcome.Ok())
            return outcome;
        session.Out().Text(ReadHostFile(path));
    }
    return {};
}

void DeclareTravel(CLI::App& app, const std::shared_ptr<TravelArguments>& arguments, int least,
                   const char* about) {
    app.add_option("PLACE", arguments->places, about)->required()->expected(-least);
    app.add_flag("--resume", arguments->travel.resume,
                 "Go on where an earlier try ended, and keep FILE.part for the next");
}

void DeclareWays(CLI::App& app, const std::shared_ptr<TravelArguments>& arguments) {
    app.add_option("--by", arguments->travel.by, "How, instead of by what the file holds")
        ->transform(CLI::IsMember({"module", "image", "font", "kermit"}, CLI::ignore_case));
    app.add_flag("--permanent", arguments->travel.permanent,
                 "What is installed is kept through a restart");
}

Command PutCommand() {
    const auto arguments = std::make_shared<TravelArguments>();
    return {"put", "Send files: a program as a module, an image or font installed, else by Kermit",
            Needs::Printer,
            [arguments](CLI::App& app) {
                DeclareTravel(app, arguments, 1,
                              "Files of this machine, and at the end where they go: c: or c:NAME");
                DeclareWays(app, arguments);
            },
            [arguments](Session& session) { return Put(session, *arguments); }};
}

Command GetCommand() {
    const auto arguments = std::make_shared<TravelArguments>();
    return {"get", "Fetch files of the printer by Kermit", Needs::Printer,
            [arguments](CLI::App& app) {
                DeclareTravel(
                    app, arguments, 1,
                    "c:NAME or 'c:*.DAT', and at the end a file or folder of this machine");
            },
            [arguments](Session& session) { return Get(session, *arguments); }};
}

Command CopyCommand() {
    const auto arguments = std::make_shared<TravelArguments>();
    return {"cp", "Copy files on the printer, to it or from it", Needs::Printer,
            [arguments](CLI::App& app) {
                DeclareTravel(app, arguments, 2,
                              "From, and at the end to: c:NAME is on the printer");
                DeclareWays(app, arguments);
            },
            [arguments](Session& session) { return Copy(session, *arguments); }};
}

Command ShowCommand() {
    const auto words = std::make_shared<Words>();
    return {"cat", "Write files of the printer to the standard output, byte for byte",
            Needs::Printer,
            [words](CLI::App& app) {
                app.add_option("PLACE", *words, "Such as c:LABEL.PRG or 'c:*.DAT'")->required();
            },
            [words](Session& session) { return Show(session, *words); }};
}

} // namespace

CommandTable TravelCommands() {
    return {CopyCommand(), PutCommand(), GetCommand(), ShowCommand()};
}

} // namespace qnctl

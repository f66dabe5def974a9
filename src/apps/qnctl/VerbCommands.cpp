// What people type without looking it up: ls, rm, mv, run, stop. Files travel by TravelCommands.
#include "Command.h"
#include "ModuleUpload.h"
#include "Places.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qnctl {
namespace {

using Words = std::vector<std::string>;

struct ListArguments {
    Words places;
    bool sizes = false;
    bool system = false;
};

/// The places that were asked for, or every device of the model.
std::optional<std::vector<Place>> PlacesToList(Session& session, const Words& words,
                                               Outcome& outcome) {
    std::vector<Place> places;
    for (const std::string& word : words) {
        const auto place = PrinterPlaceOf(word, outcome);
        if (!place) return std::nullopt;
        places.push_back(*place);
    }
    if (!words.empty()) return places;
    session.Control().Devices(); // fills the table
    for (const auto& device : *session.Printer().PrinterDevices())
        if (device->Valid) places.push_back({device->Name, {}});
    return places;
}

void ShowListed(const Output& out, const std::vector<ListedFile>& files, bool sizes) {
    if (out.IsJson()) {
        Json list = Json::array();
        for (const ListedFile& file : files)
            list.push_back({{"name", file.place.Shown()}, {"size", file.size}});
        return out.Document({{"files", list}});
    }
    std::vector<Output::Row> rows;
    for (const ListedFile& file : files)
        if (sizes)
            rows.push_back({std::to_string(file.size), file.place.Shown()});
        else
            out.Line(file.place.Shown());
    if (sizes) out.Table({Output::Align::Right, Output::Align::Left}, rows);
}

Outcome List(Session& session, const ListArguments& arguments) {
    Outcome outcome;
    const auto places = PlacesToList(session, arguments.places, outcome);
    if (!places) return outcome;
    std::vector<ListedFile> all;
    for (const Place& place : *places) {
        try {
            const auto found = ListedAt(session, place, arguments.system);
            if (found.empty() && !place.name.empty())
                outcome = Refused(ExitStatus::Error, "There is no file " + place.Shown() + ".");
            all.insert(all.end(), found.begin(), found.end());
        } catch (const qncomm::QNError& error) {
            // An empty card slot among all devices is no error.
            if (!arguments.places.empty() || error.Number() < qncomm::PrinterErrorBase) throw;
        }
    }
    ShowListed(session.Out(), all, arguments.sizes);
    return outcome;
}

Command ListCommand() {
    const auto arguments = std::make_shared<ListArguments>();
    return {"ls", "List files of the printer by their whole names", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("PLACE", arguments->places,
                               "Such as c: or 'c:*.PRG'; all devices without one");
                app.add_flag("-l,--long", arguments->sizes, "With their sizes in bytes");
                app.add_flag("--system", arguments->system, "System files, too");
            },
            [arguments](Session& session) { return List(session, *arguments); }};
}

std::string CountedFiles(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " file" : " files");
}

/// Does something with each file. What the printer refuses is told, and the others are done all the
/// same; the command has then failed. sNot: "was not deleted".
Outcome ForEach(Session& session, const std::vector<Place>& files, const std::string& sNot,
                const std::function<void(const Place&)>& work) {
    std::size_t refused = 0;
    Outcome last;
    for (const Place& file : files) {
        try {
            work(file);
        } catch (const qncomm::QNError& error) {
            if (error.Number() < qncomm::PrinterErrorBase) throw;
            ++refused;
            last = OutcomeOf(error);
            if (files.size() > 1)
                session.Out().Note(file.Shown() + " " + sNot + ": " + error.Description());
        }
    }
    if (refused == 0) return Done(session);
    if (files.size() > 1)
        last.message =
            CountedFiles(refused) + " of " + std::to_string(files.size()) + " " + sNot + ".";
    return last;
}

/// Files of the printer that words mean.
struct Meant {
    std::vector<Place> files;
    bool byPattern = false; ///< the person has not named each of them
};

/// The files of all words; a bare device is none, so that nothing is emptied by a slip.
std::optional<Meant> FilesOf(Session& session, std::span<const std::string> words,
                             Outcome& outcome) {
    Meant meant;
    for (const std::string& word : words) {
        const auto place = PrinterPlaceOf(word, outcome);
        if (!place) return std::nullopt;
        if (place->name.empty()) {
            outcome = Refused(ExitStatus::Usage, "\"" + word + "\" is a device; its files are \""
                                                     + place->device + "*\".");
            return std::nullopt;
        }
        const auto found = FilesAt(session, *place, outcome);
        if (!found) return std::nullopt;
        meant.byPattern = meant.byPattern || IsPattern(place->name);
        meant.files.insert(meant.files.end(), found->begin(), found->end());
    }
    return meant;
}

Outcome Remove(Session& session, const Words& words) {
    Outcome outcome;
    const auto meant = FilesOf(session, words, outcome);
    if (!meant) return outcome;
    if (meant->byPattern) {
        std::string names;
        for (const Place& file : meant->files)
            names += (names.empty() ? "" : ", ") + file.Shown();
        if (!session.Ask("Delete",
                         "Delete " + CountedFiles(meant->files.size()) + ": " + names + "?"))
            return Refused(ExitStatus::Error, "Nothing was deleted.");
    }
    return ForEach(session, meant->files, "was not deleted",
                   [&](const Place& file) { session.Control().KillQN(file.Full()); });
}

Outcome Move(Session& session, const Words& words) {
    Outcome outcome;
    const auto to = PrinterPlaceOf(words.back(), outcome);
    if (!to) return outcome;
    const auto meant = FilesOf(session, std::span(words).first(words.size() - 1), outcome);
    if (!meant) return outcome;
    if (meant->files.size() > 1 && !to->name.empty())
        return Refused(ExitStatus::Usage,
                       "Several files go to a device, such as " + to->device + ".");
    return ForEach(session, meant->files, "was not moved", [&](const Place& file) {
        session.Control().RenameFile(file.Full(),
                                     to->device + (to->name.empty() ? file.name : to->name));
    });
}

/// A verb whose arguments are at least so many words.
Command WordsCommand(const char* name, const char* help, const char* what, const char* about,
                     int least, Outcome (*work)(Session&, const Words&)) {
    const auto words = std::make_shared<Words>();
    return {name, help, Needs::Printer,
            [words, what, about, least](CLI::App& app) {
                app.add_option(what, *words, about)->required()->expected(-least);
            },
            [words, work](Session& session) { return work(session, *words); }};
}

Outcome Run(Session& session, const std::string& word) {
    Outcome outcome;
    const auto place = PlaceOf(word, outcome);
    if (!place) return outcome;
    if (!place->OnPrinter()) {
        if (outcome = UploadModule(session, place->name, {}); !outcome.Ok()) return outcome;
    } else {
        session.Link().OutputText("LOAD " + qncomm::Quoted(place->Full()) + "\r\n");
        std::vector<std::string> reply;
        session.Link().InputText(reply); // raises what the printer says of the file
    }
    session.Control().RunProgram();
    return place->OnPrinter() ? Done(session) : outcome;
}

Command RunCommand() {
    const auto word = std::make_shared<std::string>();
    return {"run", "Run a program of the printer, or one of this machine", Needs::Printer,
            [word](CLI::App& app) {
                app.add_option("PLACE", *word,
                               "c:LABEL.PRG; a path of this machine is typed in first")
                    ->required();
            },
            [word](Session& session) { return Run(session, *word); }};
}

} // namespace

CommandTable VerbCommands() {
    return {
        ListCommand(),
        WordsCommand("mv", "Move or rename files on the printer", "PLACE",
                     "From, such as 'tmp:*.PRG', and at the end to, such as c: or c:NEW.PRG", 2,
                     Move),
        WordsCommand("rm", "Delete files of the printer; asks before it deletes what \"*\" means",
                     "PLACE", "Such as c:OLD.PRG or 'c:*.TMP'", 1, Remove),
        RunCommand(),
    };
}

} // namespace qnctl

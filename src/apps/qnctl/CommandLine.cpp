#include "CommandLine.h"

#include "Suggestion.h"
#include "Version.h"

#include "usage/UsageOf.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>

namespace qnctl {
namespace {

void DeclareGlobals(CLI::App& app, GlobalOptions& options) {
    app.add_option("--port", options.port,
                   "The port: /dev/…, usb:SERIAL, tcp://HOST:PORT, rfc2217://HOST:PORT, sim:MODEL, "
                   "or a number such as COM3")
        ->type_name("ADDRESS");
    app.add_option("--settings", options.settings, "The settings file, instead of your own")
        ->type_name("FILE");
    app.add_option("--trace", options.trace, "Write what travels on the line, as JSON Lines")
        ->type_name("FILE");
    app.add_option("--labels", options.labels, "Where a virtual printer (sim:) puts its labels")
        ->type_name("DIR");
    app.add_flag("--json", options.json, "One JSON document instead of text");
    app.add_flag("--quiet", options.quiet, "No progress messages");
    CLI::Option* yes = app.add_flag("--yes", options.yes, "Answer questions with yes");
    app.add_flag("--no", options.no, "Answer questions with no")->excludes(yes);
    app.add_flag("--interrupt", options.interrupt,
                 "End a running program first, by Ctrl-C or a break");
    app.add_flag("!--no-listen", options.listen,
                 "Search for the printer even where something talks by itself");
}

struct Group {
    const char* name;
    const char* help;
};

constexpr std::array Groups{
    Group{"program", "The printer's program: new, run, stop, check, save, list"},
    Group{"module", "Program modules: upload, link"},
    Group{"setup", "The printer's setup: list, set, write, load"},
    Group{"font", "One font: install, remove, print"},
    Group{"image", "One image: install, remove, print"},
    Group{"kermit", "Files by Kermit: send, receive"},
    Group{"binary", "Files by ZModem or Kermit with a printer that waits: send, receive"},
    Group{"macros", "What the function keys do: list, set"},
    Group{"trace", "A file that --trace wrote: redact"},
};

std::string HelpOf(std::string_view group) {
    const auto found = std::find_if(Groups.begin(), Groups.end(),
                                    [&](const Group& known) { return known.name == group; });
    return found != Groups.end() ? found->help : "";
}

/// The command's place: a group is made with its first command.
CLI::App* Place(CLI::App& app, const std::string& name) {
    const std::size_t blank = name.find(' ');
    if (blank == std::string::npos) return &app;
    const std::string group = name.substr(0, blank);
    const auto known =
        app.get_subcommands([&](const CLI::App* sub) { return sub->get_name() == group; });
    if (!known.empty()) return known.front();
    CLI::App* made = app.add_subcommand(group, HelpOf(group))->fallthrough();
    made->require_subcommand(1);
    return made;
}

/// The deepest command that was named.
const CLI::App* Named(const CLI::App& app) {
    const CLI::App* found = &app;
    for (auto below = found->get_subcommands(); !below.empty(); below = found->get_subcommands())
        found = below.front();
    return found;
}

/// The words that nobody took, options apart.
std::vector<std::string> LeftWords(const CLI::App& app) {
    std::vector<std::string> words = app.remaining(true);
    std::erase_if(words, [](const std::string& word) { return word.starts_with('-'); });
    return words;
}

/// The first left word stands where a command should.
std::string NoSuchCommand(const CLI::App& at, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* known : at.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(known->get_name());
    const std::string group = at.get_parent() != nullptr ? at.get_name() + " " : "";
    std::string text = "There is no command \"" + group + word + "\".";
    if (const std::string meant = NearestName(word, names); !meant.empty())
        text += " Did you mean \"" + group + meant + "\"?";
    return text;
}

/// A command has got more words than it takes: a shell has cut a text at its blanks.
std::string TooManyWords(const CLI::App& command, const std::vector<std::string>& left) {
    std::string text;
    for (const CLI::Option* option : command.get_options())
        if (option->get_positional() && !option->results().empty()) text = option->results().back();
    std::string extra;
    for (const std::string& word : left)
        extra += (extra.empty() ? "" : " ") + word;
    std::string told = "\"" + command.get_name() + "\" takes no more words: " + extra + ".";
    if (!text.empty()) told += " A text with blanks stands in quotes: '" + text + " " + extra + "'";
    return told;
}

std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& named = *Named(app);
    const std::vector<std::string> left = LeftWords(app);
    const std::vector<std::string> all = app.remaining(true);
    if (left.size() < all.size()) {
        const auto option = std::ranges::find_if(
            all, [](const std::string& word) { return word.starts_with('-'); });
        return "There is no option \"" + *option + "\" here.";
    }
    if (left.empty()) return error.what();
    if (named.get_require_subcommand_min() > 0) return NoSuchCommand(named, left.front());
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) return TooManyWords(named, left);
    return error.what();
}

Outcome EndOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        app.exit(error); // prints the help or the version
        return {};
    }
    return Refused(ExitStatus::Usage,
                   WhatIsWrong(app, error) + "\nRun with --help for more information.");
}

using Places = std::vector<std::pair<const CLI::App*, const Command*>>;

/// Where the commands stand that are declared.
Places Declare(CLI::App& app, GlobalOptions& options, const CommandTable& table) {
    app.set_version_flag("--version", std::string("qnctl ") + Version);
    app.require_subcommand(1);
    DeclareGlobals(app, options);
    app.footer("The options of \"qnctl --help\", such as --port, can stand here, too.");
    Places places;
    for (const Command& command : table) {
        const std::string last = command.name.substr(command.name.find(' ') + 1);
        CLI::App* sub = Place(app, command.name)->add_subcommand(last, command.help);
        sub->fallthrough();
        if (command.declare) command.declare(*sub);
        places.emplace_back(sub, &command);
    }
    app.footer("\"qnctl COMMAND --help\" shows what a command takes. It ends with status 0 when "
               "done, 1 for "
               "an error,\n2 for wrong usage, 3 without a printer, 4 without the port, 130 when "
               "cancelled.");
    return places;
}

constexpr const char* Purpose = "Talks to label printers over a serial line.";

} // namespace

qncomm::Usage UsageOf(const CommandTable& table) {
    GlobalOptions options;
    CLI::App app(Purpose, "qnctl");
    Declare(app, options, table);
    return qncomm::UsageOf(app);
}

Request ParseCommandLine(int argc, const char* const* argv, const CommandTable& table) {
    Request request;
    CLI::App app(Purpose, "qnctl");
    const Places places = Declare(app, request.options, table);
    try {
        app.parse(argc, argv);
        const auto found = std::find_if(places.begin(), places.end(), [&](const auto& place) {
            return place.first == Named(app);
        });
        if (found != places.end()) request.command = found->second;
    } catch (const CLI::ParseError& error) {
        // The flag decides the form of the message, even on a line that did not parse.
        request.options.json = std::any_of(
            argv, argv + argc, [](const char* text) { return std::string_view(text) == "--json"; });
        request.ended = EndOf(app, error);
    }
    return request;
}

} // namespace qnctl

#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/HostPath.h"
#include "common/MacroRecord.h"
#include "common/Text.h"
#include "console/Charset.h"
#include "platform/SystemFiles.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <memory>

namespace qnctl {
namespace {

struct MacroKind {
    const char* name;
    qncomm::FunctionKeyKind kind;
};
constexpr std::array Kinds{MacroKind{"text", qncomm::TextMacro},
                           MacroKind{"file", qncomm::FileMacro},
                           MacroKind{"run", qncomm::RunMacro}};

struct SetArguments {
    std::string key;
    std::string kind;
    std::string argument;
};

/// A key's macro as it is shown; a key without one has an empty kind.
Json MacroOf(Session& session, std::string_view key) {
    const qncomm::MacroRecord record = qncomm::ReadMacro(&session.Store(), key);
    const auto kind = std::ranges::find(Kinds, record.Kind(), &MacroKind::kind);
    if (kind == Kinds.end()) return {{"key", key}, {"kind", nullptr}, {"argument", nullptr}};
    // A text is the printer's, a path or a command line is this machine's.
    const bool text = kind == Kinds.begin();
    return {{"key", key},
            {"kind", kind->name},
            {"argument", text ? qncomm::Utf8FromPrinter(record.argument)
                              : qncomm::DisplayText(record.argument)}};
}

Outcome ListMacros(Session& session) {
    Json list = Json::array();
    std::vector<Output::Row> rows;
    for (const std::string_view key : qncomm::FunctionKeys) {
        list.push_back(MacroOf(session, key));
        const Json& macro = list.back();
        if (macro["kind"].is_null())
            rows.push_back({std::string(key), "-", ""});
        else
            rows.push_back({std::string(key), macro["kind"], macro["argument"]});
    }
    if (session.Out().IsJson())
        session.Out().Document({{"macros", list}});
    else
        session.Out().Table(std::vector<Output::Align>(3, Output::Align::Left), rows);
    return {};
}

/// The argument as it is stored: a text in the printer's bytes, a file by its full path, since a
/// key is pressed anywhere.
std::optional<std::string> Stored(const SetArguments& arguments, Outcome& outcome) {
    if (arguments.kind == "text") return ForPrinter(arguments.argument, outcome);
    if (arguments.kind == "run") return arguments.argument;
    return qncomm::PathIn(qncomm::SystemFiles().CurrentFolder(), arguments.argument);
}

Outcome SetMacro(Session& session, const SetArguments& arguments) {
    Outcome outcome;
    const auto argument = Stored(arguments, outcome);
    if (!argument) return outcome;
    const auto kind = std::ranges::find_if(
        Kinds, [&](const MacroKind& known) { return arguments.kind == known.name; });
    session.Store().WriteValues(
        {qncomm::MacroSetting(qncomm::UpperCase(arguments.key), kind->kind, *argument)});
    return Done(session);
}

Command SetCommand() {
    const auto arguments = std::make_shared<SetArguments>();
    return {"macros set", "Define what a function key does", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_option("KEY", arguments->key, "F1 to F8")
                    ->required()
                    ->check(CLI::IsMember(std::vector<std::string>(qncomm::FunctionKeys.begin(),
                                                                   qncomm::FunctionKeys.end()),
                                          CLI::ignore_case));
                app.add_option("KIND", arguments->kind,
                               "text (is sent), file (its content is sent), run (a program with "
                               "its arguments)")
                    ->required()
                    ->transform(CLI::IsMember({"text", "file", "run"}, CLI::ignore_case));
                app.add_option("ARGUMENT", arguments->argument,
                               "The text, the path or the command line")
                    ->required();
            },
            [arguments](Session& session) { return SetMacro(session, *arguments); }};
}

} // namespace

CommandTable MacroCommands() {
    return {{"macros list", "Show what the function keys do", Needs::Nothing, {}, ListMacros},
            SetCommand()};
}

} // namespace qnctl

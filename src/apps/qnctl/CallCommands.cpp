#include "BatchFile.h"
#include "Command.h"
#include "MemberCalls.h"
#include "Session.h"

#include "platform/Fd.h"
#include "platform/FileOpening.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

#include <unistd.h>

namespace qnctl {
namespace {

using qncomm::MemberParameter;
using qncomm::SurfaceMember;

struct CallArguments {
    std::string member;
    std::vector<std::string> texts;
    bool list = false;
    bool showArguments = false;
};

struct BatchArguments {
    std::string file;
    bool keepGoing = false;
    bool showArguments = false;
};

Json DocumentOf(const SurfaceMember& member) {
    Json parameters = Json::array();
    for (const MemberParameter& parameter : member.parameters)
        parameters.push_back(
            {{"name", parameter.name},
             {"type", WordFor(parameter.type)},
             {"default", parameter.byDefault ? Json(*parameter.byDefault) : Json()},
             {"writtenBack", parameter.writtenBack}});
    const std::string_view result = WordFor(member.result);
    return {{"name", member.name},
            {"kind", WordFor(member.kind)},
            {"parameters", parameters},
            {"result", result.empty() ? Json() : Json(result)},
            {"needs", WordFor(member.needs)}};
}

Outcome ListMembers(Session& session) {
    Json list = Json::array();
    std::vector<Output::Row> rows{{"KIND", "MEMBER", "RESULT", "NEEDS"}};
    for (const SurfaceMember& member : qncomm::ControlClass().members) {
        list.push_back(DocumentOf(member));
        rows.push_back({std::string(WordFor(member.kind)), SignatureOf(member),
                        std::string(WordFor(member.result)), std::string(WordFor(member.needs))});
    }
    if (session.Out().IsJson())
        session.Out().Document({{"members", list}});
    else
        session.Out().Table(std::vector<Output::Align>(4, Output::Align::Left), rows);
    return {};
}

bool NeedsPort(const MemberCall& call) {
    return call.member->needs != qncomm::MemberNeeds::Nothing;
}

/// A port that was named wrongly is an error even for calls that would do without one.
Outcome ChooseThePort(Session& session, bool needed) {
    const std::string& named = session.Options().port;
    return needed || !named.empty() ? session.ChooseThePort(named) : session.ChooseNoPort();
}

Outcome Call(Session& session, const CallArguments& arguments) {
    if (arguments.list) return ListMembers(session);
    if (arguments.member.empty())
        return Refused(ExitStatus::Usage, "MEMBER is missing; \"qnctl call --list\" shows them.");
    Outcome outcome;
    const auto call = UnderstandCall(arguments.member, arguments.texts, outcome);
    if (!call) return outcome;
    if (outcome = ChooseThePort(session, NeedsPort(*call)); !outcome.Ok()) return outcome;
    qncomm::MemberOutcome result;
    if (outcome = CallOn(session, *call, result); !outcome.Ok()) return outcome;
    if (session.Out().IsJson())
        session.Out().Document(ResultDocument(result, arguments.showArguments));
    else
        ShowResult(session.Out(), result, arguments.showArguments);
    return {};
}

/// Runs one line; its result goes out at once.
Outcome RunLine(Session& session, const BatchLine& line, bool showArguments) {
    qncomm::MemberOutcome result;
    Outcome outcome = CallOn(session, line.call, result);
    outcome.place = line.place;
    if (!outcome.Ok()) return outcome;
    if (!session.Out().IsJson()) {
        ShowResult(session.Out(), result, showArguments);
        return outcome;
    }
    Json document{{"place", line.place}, {"member", line.call.member->name}};
    document.update(ResultDocument(result, showArguments));
    session.Out().Document(document);
    return outcome;
}

Outcome Batch(Session& session, const BatchArguments& arguments) {
    Outcome outcome;
    qncomm::Fd file;
    if (arguments.file != "-") {
        // A pipe serves as well: what another program prints may be a batch.
        const auto opened = qncomm::OpenToRead(arguments.file, {.streams = true}, file);
        if (!opened.Ok()) return Refused(ExitStatus::Usage, opened.text + ".");
    }
    qncomm::LineReader input(session.Loop(), file ? file.Get() : STDIN_FILENO);
    const auto lines = ReadBatch(arguments.file, input, outcome);
    if (!outcome.Ok()) return outcome;
    const bool needsPort =
        std::ranges::any_of(lines, [](const BatchLine& line) { return NeedsPort(line.call); });
    if (outcome = ChooseThePort(session, needsPort); !outcome.Ok()) return outcome;
    std::size_t failures = 0;
    for (const BatchLine& line : lines) {
        outcome = RunLine(session, line, arguments.showArguments);
        if (outcome.Ok()) continue;
        // Without a printer the lines that follow have nothing to talk to.
        if (!arguments.keepGoing || outcome.status != ExitStatus::Error) return outcome;
        session.Out().Failure(outcome);
        ++failures;
    }
    if (failures == 0) return {};
    return Refused(ExitStatus::Error, std::to_string(failures) + " of "
                                          + std::to_string(lines.size()) + " calls failed.");
}

Command CallCommand() {
    const auto arguments = std::make_shared<CallArguments>();
    return {"call", "Call a member of the control by its name", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_option("MEMBER", arguments->member, "Its name, in any case");
                app.add_option("ARG", arguments->texts,
                               "Its arguments in their order, or as name:=value");
                app.add_flag("--list", arguments->list, "Show all members instead");
                app.add_flag("--show-args", arguments->showArguments,
                             "Show what the member wrote back into its arguments");
            },
            [arguments](Session& session) { return Call(session, *arguments); }};
}

Command BatchCommand() {
    const auto arguments = std::make_shared<BatchArguments>();
    return {"batch", "Call members from a file, one call a line, in one session", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_option("FILE", arguments->file, "The calls; - for the standard input")
                    ->required();
                app.add_flag("--keep-going", arguments->keepGoing,
                             "Go on after a call that raised an error");
                app.add_flag("--show-args", arguments->showArguments,
                             "Show what the members wrote back into their arguments");
            },
            [arguments](Session& session) { return Batch(session, *arguments); }};
}

} // namespace

CommandTable CallCommands() {
    return {CallCommand(), BatchCommand()};
}

} // namespace qnctl

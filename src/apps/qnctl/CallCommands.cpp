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
        session.Out().Text({}); // all of it, at once
        return outcome;
    }
    Json document{{"place", line.place}, {"member", line.call.member->name}};
    document.update(ResultDocument(result, showArguments));
    session.Out().Document(document);
    return outcome;
}

/// Calls that failed and were gone on behind.
class Failures {
  public:
    Failures(Session& session, bool keepGoing) : mSession(session), mKeepGoing(keepGoing) {}

    /// Whether the next call is made; what has failed is told. Without a printer or a port there is
    /// nothing to talk to.
    bool GoOnBehind(const Outcome& outcome) {
        ++mCalls;
        if (outcome.Ok()) return true;
        if (!mKeepGoing
            || (outcome.status != ExitStatus::Error && outcome.status != ExitStatus::Usage))
            return false;
        mSession.Out().Failure(outcome);
        ++mFailed;
        return true;
    }

    Outcome All() const {
        if (mFailed == 0) return {};
        return Refused(ExitStatus::Error, std::to_string(mFailed) + " of " + std::to_string(mCalls)
                                              + " calls failed.");
    }

  private:
    Session& mSession;
    bool mKeepGoing;
    std::size_t mCalls = 0;
    std::size_t mFailed = 0;
};

/// Carries each line out when it has come, so that whoever writes the next one has the answer to
/// the one before.
Outcome Converse(Session& session, BatchReader& reader, const BatchArguments& arguments) {
    Failures failures(session, arguments.keepGoing);
    bool made = false;
    bool hasPort = false;
    for (;;) {
        Outcome outcome;
        const auto line = reader.Next(outcome);
        if (!line && outcome.Ok()) return failures.All();
        if (line) {
            if (!made || (!hasPort && NeedsPort(line->call))) {
                hasPort = NeedsPort(line->call) || !session.Options().port.empty();
                if (Outcome chosen = ChooseThePort(session, hasPort); !chosen.Ok()) return chosen;
                made = true;
            }
            outcome = RunLine(session, *line, arguments.showArguments);
        }
        if (!failures.GoOnBehind(outcome)) return outcome;
    }
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
    BatchReader reader(arguments.file, input, static_cast<bool>(file));
    if (!file) return Converse(session, reader, arguments);
    const auto lines = ReadBatch(reader, outcome);
    if (!outcome.Ok()) return outcome;
    const bool needsPort =
        std::ranges::any_of(lines, [](const BatchLine& line) { return NeedsPort(line.call); });
    if (outcome = ChooseThePort(session, needsPort); !outcome.Ok()) return outcome;
    Failures failures(session, arguments.keepGoing);
    for (const BatchLine& line : lines)
        if (outcome = RunLine(session, line, arguments.showArguments);
            !failures.GoOnBehind(outcome))
            return outcome;
    return failures.All();
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
                app.add_option(
                       "FILE", arguments->file,
                       "The calls; - for the standard input, each line answered as it comes")
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

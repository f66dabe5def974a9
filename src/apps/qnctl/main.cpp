#include "Command.h"
#include "CommandLine.h"
#include "LiveNames.h"
#include "LoadProgress.h"
#include "Output.h"
#include "Session.h"
#include "Version.h"

#include "common/QNError.h"

#include "platform/StandardStreams.h"
#include "usage/ShellAnswer.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qnctl {
namespace {

Outcome Carry(const Request& request, Session& session) {
    if (request.command->needs != Needs::Nothing)
        if (Outcome chosen = session.ChooseThePort(request.options.port); !chosen.Ok())
            return chosen;
    if (request.command->needs == Needs::Printer)
        if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
    Outcome outcome;
    try {
        outcome = request.command->run(session);
    } catch (const qncomm::QNError& error) {
        return session.Failed(error);
    } catch (const qncomm::OperationCancelled&) {
        return CancelledBut(StillDeaf(session));
    }
    if (outcome.Ok() && session.TakePortRefusal())
        return Refused(ExitStatus::PortUnavailable, "port not available");
    return outcome;
}

Outcome Run(const Request& request, const Output& output) {
    try {
        Session session(request.options, output);
        Outcome outcome = Carry(request, session);
        return outcome.Ok() ? session.RecordingOutcome() : outcome;
    } catch (const qncomm::OperationCancelled&) {
        return Cancelled();
    } catch (const qncomm::QNError& error) {
        return OutcomeOf(error);
    } catch (const std::exception& error) {
        return Refused(ExitStatus::Error, error.what());
    }
}

/// The manual page, or what can stand in the place of a word; nothing when neither is asked for.
std::optional<ExitStatus> PrepareForUsers(int argc, char** argv, const CommandTable& table) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto answer = qncomm::AnswerShell(
        words, [&table] { return UsageOf(table); }, Version,
        [&words](const std::string& value) { return LiveNames(value, words); });
    if (!answer) return std::nullopt;
    Output(false).Text(answer->text);
    return static_cast<ExitStatus>(answer->status);
}

ExitStatus RunProgram(int argc, char** argv) {
    const CommandTable table = AllCommands();
    if (const auto ended = PrepareForUsers(argc, argv, table)) return *ended;
    const Request request = ParseCommandLine(argc, argv, table);
    const Output output(request.options.json);
    Outcome outcome = request.ended ? *request.ended : Run(request, output);
    // Also when something else went wrong: it was cancelled because nobody takes what it says.
    if (const int error = output.Error(); error != 0) outcome = OutputLost(error);
    if (!outcome.Ok() && !outcome.message.empty()) output.Failure(outcome);
    return outcome.status;
}

} // namespace
} // namespace qnctl

int main(int argc, char** argv) {
    qncomm::PrepareStandardStreams();
    try {
        return static_cast<int>(qnctl::RunProgram(argc, argv));
    } catch (const std::exception& error) { // such as memory that ran out
        qnctl::Output(false).Note(error.what());
        return static_cast<int>(qnctl::ExitStatus::Error);
    }
}

#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"

#include "trace/TraceRedaction.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qnctl {
namespace {

struct RedactArguments {
    std::string from;
    std::string to;
};

Outcome Redact(Session& session, const RedactArguments& arguments) {
    const qncomm::IoResult result = qncomm::RedactTrace(arguments.from, arguments.to);
    if (!result.Ok()) return Refused(ExitStatus::Error, result.text + ".");
    return Done(session);
}

} // namespace

CommandTable TraceCommands() {
    const auto arguments = std::make_shared<RedactArguments>();
    return {{"trace redact", "Copy a trace without the contents of files and programs",
             Needs::Nothing,
             [arguments](CLI::App& app) {
                 app.add_option("IN", arguments->from, "The trace")->required();
                 app.add_option("OUT", arguments->to, "The file to write")->required();
             },
             [arguments](Session& session) { return Redact(session, *arguments); }}};
}

} // namespace qnctl

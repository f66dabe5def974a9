#include "PlainCommand.h"

#include "Session.h"

#include "console/Charset.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <utility>

namespace qnctl {
namespace {

using Work = std::function<void(qncomm::QNComm&, const Texts&)>;

Outcome RunPlain(Session& session, const std::vector<TextArgument>& arguments, const Texts& given,
                 const Work& work) {
    Texts values;
    Outcome outcome;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const auto value = arguments[i].ofThisMachine ? given[i] : ForPrinter(given[i], outcome);
        if (!value) return outcome;
        values.push_back(*value);
    }
    work(session.Control(), values);
    return Done(session);
}

} // namespace

Command PlainCommand(std::string name, std::string help, const std::vector<TextArgument>& arguments,
                     Work work) {
    const auto given = std::make_shared<Texts>(arguments.size());
    return {std::move(name), std::move(help), Needs::Printer,
            [arguments, given](CLI::App& app) {
                for (std::size_t i = 0; i < arguments.size(); ++i)
                    app.add_option(arguments[i].name, (*given)[i], arguments[i].help)->required();
            },
            [arguments, given, work = std::move(work)](Session& session) {
                return RunPlain(session, arguments, *given, work);
            }};
}

std::optional<std::string> ForPrinter(const std::string& text, Outcome& outcome) {
    auto bytes = qncomm::PrinterFromUtf8(text);
    if (!bytes)
        outcome =
            Refused(ExitStatus::Usage,
                    "\"" + text + "\" holds a character that the printer's Windows-1252 lacks.");
    return bytes;
}

Outcome Done(Session& session) {
    if (session.Out().IsJson()) session.Out().Document({{"done", true}});
    return {};
}

} // namespace qnctl

#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"

#include "console/Charset.h"

namespace qnctl {
namespace {

using qncomm::QNComm;

Outcome ListSetup(Session& session) {
    Json document = Json::object();
    std::vector<Output::Row> rows;
    const auto setup = session.Control().Setup();
    for (const auto& item : *setup) {
        const std::string key = qncomm::Utf8FromPrinter(item->Key);
        const std::string value = qncomm::Utf8FromPrinter(item->Value);
        document[key] = value;
        rows.push_back({key, value});
    }
    if (session.Out().IsJson())
        session.Out().Document({{"setup", document}});
    else
        session.Out().Table({Output::Align::Left, Output::Align::Left}, rows);
    return {};
}

} // namespace

CommandTable SetupCommands() {
    return {
        {"setup list", "Show the printer's setup", Needs::Printer, {}, ListSetup},
        PlainCommand(
            "setup set", "Change one item of the setup",
            {{"KEY", "As in the list, such as \"PRINT DEFS,DARKNESS\""},
             {"VALUE", "Its new value"}},
            [](QNComm& control, const Texts& t) { control.ChangePrinterSetupItem(t[0], t[1]); }),
        PlainCommand("setup write", "Write the setup to a file on the printer",
                     {{"NAME", "Such as ram:MINE.SET"}},
                     [](QNComm& control, const Texts& t) { control.SetupWriteFile(t[0]); }),
        PlainCommand("setup load", "Read the setup from a file on the printer",
                     {{"NAME", "Such as ram:MINE.SET"}},
                     [](QNComm& control, const Texts& t) { control.SetupLoadFile(t[0]); }),
    };
}

} // namespace qnctl

#include "Command.h"
#include "PlainCommand.h"
#include "Session.h"

#include "console/Charset.h"

namespace qnctl {
namespace {

using qncomm::QNComm;

/// Each key comes once: looking for it among those before would take longer with each.
Json DocumentOf(const qncomm::PrinterSetup& setup) {
    Json::object_t items;
    items.reserve(setup.Count());
    for (const auto& item : setup)
        items.push_back({qncomm::Utf8FromPrinter(item->Key), qncomm::Utf8FromPrinter(item->Value)});
    return {{"setup", std::move(items)}};
}

Outcome ListSetup(Session& session) {
    const auto setup = session.Control().Setup();
    if (session.Out().IsJson()) {
        session.Out().Document(DocumentOf(*setup));
        return {};
    }
    std::vector<Output::Row> rows;
    for (const auto& item : *setup)
        rows.push_back({qncomm::Utf8FromPrinter(item->Key), qncomm::Utf8FromPrinter(item->Value)});
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

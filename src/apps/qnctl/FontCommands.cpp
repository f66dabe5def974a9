#include "Command.h"
#include "LoadProgress.h"
#include "PlainCommand.h"
#include "Session.h"

#include "console/Charset.h"
#include "printer/StorageDevices.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qnctl {
namespace {

using qncomm::QNComm;

struct FontFileArguments {
    std::string file;
    bool permanent = false;
};

struct FontSampleArguments {
    std::string name;
    std::string text;
    std::int16_t size = 0;
    std::int16_t slant = 0;
    std::int16_t width = 0;
    std::int16_t direction = 0;
    bool upper = false;
    bool inverse = false;
};

std::shared_ptr<qncomm::PrinterFiles> Fonts(Session& session, bool filter) {
    if (session.Control().CanList()) return session.Control().Fonts(false, filter);
    session.Printer().Fonts(filter); // the control would ask, and tell the user, twice
    return session.Printer().PrinterDevices()->Item(qncomm::FontsDevice)->Files;
}

Outcome ListFonts(Session& session, bool filter) {
    const auto fonts = Fonts(session, filter);
    Json list = Json::array();
    const bool json = session.Out().IsJson();
    for (const auto& font : *fonts) {
        const std::string name = qncomm::Utf8FromPrinter(font->Name);
        if (json)
            list.push_back(name);
        else
            session.Out().Line(name);
    }
    if (json) session.Out().Document({{"fonts", list}});
    return {};
}

Outcome PrintFont(Session& session, const FontSampleArguments& arguments) {
    Outcome outcome;
    const auto name = ForPrinter(arguments.name, outcome);
    if (!name) return outcome;
    const auto text = ForPrinter(arguments.text, outcome);
    if (!text) return outcome;
    qncomm::PrintFontArgs sample{*text,           *name,
                                 arguments.size,  arguments.slant,
                                 arguments.width, arguments.direction,
                                 arguments.upper, arguments.inverse};
    session.Control().PrintFont(sample);
    return Done(session);
}

Command FontsCommand() {
    const auto filter = std::make_shared<bool>(false);
    return {"fonts", "List the printer's fonts", Needs::Printer,
            [filter](CLI::App& app) {
                app.add_flag("--filter", *filter, "Without the built-in bitmap fonts");
            },
            [filter](Session& session) { return ListFonts(session, *filter); }};
}

Command InstallFontCommand() {
    const auto arguments = std::make_shared<FontFileArguments>();
    return {"font install", "Send a TrueType font to the printer", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("FILE", arguments->file, "A file of this machine")->required();
                app.add_flag("--permanent", arguments->permanent, "Keep it through a restart");
            },
            [arguments](Session& session) {
                return CarryLoad(session, [&] {
                    session.Control().InstallFont(arguments->file, arguments->permanent);
                });
            }};
}

Command PrintFontCommand() {
    const auto arguments = std::make_shared<FontSampleArguments>();
    return {"font print", "Print a label with a sample of a font", Needs::Printer,
            [arguments](CLI::App& app) {
                FontSampleArguments& a = *arguments;
                app.add_option("NAME", a.name, "The font")->required();
                app.add_option("--text", a.text, "The sample")->type_name("T");
                app.add_option("--size", a.size, "Height in points")->type_name("N");
                app.add_option("--slant", a.slant, "Slant in degrees")->type_name("N");
                app.add_option("--width", a.width, "Width in percent")->type_name("N");
                app.add_option("--dir", a.direction, "Direction, 1 to 4")->type_name("N");
                app.add_flag("--upper", a.upper, "In upper case");
                app.add_flag("--inverse", a.inverse, "White on black");
            },
            [arguments](Session& session) { return PrintFont(session, *arguments); }};
}

} // namespace

CommandTable FontCommands() {
    return {
        FontsCommand(),
        InstallFontCommand(),
        PlainCommand("font remove", "Remove a font from the printer", {{"NAME", "The font"}},
                     [](QNComm& control, const Texts& t) { control.Layer().RemoveFont(t[0]); }),
        PrintFontCommand(),
    };
}

} // namespace qnctl

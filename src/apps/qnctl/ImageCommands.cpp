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

struct ImageFileArguments {
    std::string file;
    bool permanent = false;
};

struct ImagePlaceArguments {
    std::string file;
    std::int32_t x = 1;
    std::int32_t y = 1;
    bool inverse = false;
    bool reload = false;
};

std::shared_ptr<qncomm::PrinterFiles> Images(Session& session) {
    if (session.Control().CanList()) return session.Control().Images();
    session.Printer().Images(); // the control would ask, and tell the user, twice
    return session.Printer().PrinterDevices()->Item(qncomm::ImagesDevice)->Files;
}

Outcome ListImages(Session& session) {
    const auto images = Images(session);
    Json list = Json::array();
    std::vector<Output::Row> rows;
    for (const auto& image : *images) {
        const std::string name = qncomm::Utf8FromPrinter(image->Name);
        list.push_back({{"name", name}, {"size", image->Size}});
        rows.push_back({name, std::to_string(image->Size)});
    }
    if (session.Out().IsJson())
        session.Out().Document({{"images", list}});
    else
        session.Out().Table({Output::Align::Left, Output::Align::Right}, rows);
    return {};
}

Command InstallImageCommand() {
    const auto arguments = std::make_shared<ImageFileArguments>();
    return {"image install", "Send a PCX image to the printer", Needs::Printer,
            [arguments](CLI::App& app) {
                app.add_option("FILE", arguments->file, "A file of this machine")->required();
                app.add_flag("--permanent", arguments->permanent, "Keep it through a restart");
            },
            [arguments](Session& session) {
                return CarryLoad(session, [&] {
                    session.Control().InstallImage(arguments->file, arguments->permanent);
                });
            }};
}

Command PrintImageCommand() {
    const auto arguments = std::make_shared<ImagePlaceArguments>();
    return {"image print", "Print a label with an image, installing it when it is missing",
            Needs::Printer,
            [arguments](CLI::App& app) {
                ImagePlaceArguments& a = *arguments;
                app.add_option("FILE", a.file, "A file of this machine")->required();
                app.add_option("--x", a.x, "Position in dots")->type_name("N");
                app.add_option("--y", a.y, "Position in dots")->type_name("N");
                app.add_flag("--inverse", a.inverse, "White on black");
                app.add_flag("--reload", a.reload, "Install it even when the printer has it");
            },
            [arguments](Session& session) {
                const ImagePlaceArguments& a = *arguments;
                session.Control().PrintImage(a.file, a.x, a.y, a.inverse, a.reload);
                return Done(session);
            }};
}

} // namespace

CommandTable ImageCommands() {
    return {
        {"images", "List the printer's images", Needs::Printer, {}, ListImages},
        InstallImageCommand(),
        PlainCommand("image remove", "Remove an image from the printer", {{"NAME", "The image"}},
                     [](QNComm& control, const Texts& t) { control.RemoveImage(t[0]); }),
        PrintImageCommand(),
    };
}

} // namespace qnctl

#include "Travel.h"

#include "CarriedTransfer.h"
#include "HostFileKind.h"
#include "LoadProgress.h"
#include "ModuleUpload.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/HostPath.h"
#include "common/SafeText.h"
#include "common/Text.h"
#include "console/Charset.h"
#include "platform/SystemFiles.h"

#include <array>
#include <functional>

namespace qnctl {
namespace {

std::string CountedBytes(std::uintmax_t bytes) {
    return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}

/// "1234 bytes in 2.1 s, 588 bytes/s".
std::string HowFast(std::uintmax_t bytes, std::int64_t ms) {
    constexpr std::int64_t second = 1000;
    constexpr std::int64_t tenth = 100;
    std::string told = CountedBytes(bytes) + " in " + std::to_string(ms / second) + "."
                       + std::to_string(ms % second / tenth) + " s";
    if (ms > 0)
        told +=
            ", " + std::to_string(bytes * second / static_cast<std::uintmax_t>(ms)) + " bytes/s";
    return told;
}

/// Carries a file, and says at a terminal what was done, how much and how fast.
Outcome Tell(Session& session, const Journey& journey, const std::string& by,
             const std::string& hostFile, const std::function<Outcome()>& carry) {
    const std::int64_t start = session.Loop().NowMs();
    Outcome outcome = carry();
    if (!outcome.Ok()) return outcome;
    const std::int64_t ms = session.Loop().NowMs() - start;
    session.Status().Keep(journey.from.Shown() + " -> " + journey.to.Shown() + ", " + by + ": "
                          + HowFast(qncomm::SystemFiles().Size(hostFile), ms));
    return outcome;
}

struct Way {
    HostFileKind fits;
    const char* name; ///< for --by
    const char* told;
};

constexpr std::array Ways{
    Way{HostFileKind::Program, "module", "typed in as a module"},
    Way{HostFileKind::Image, "image", "installed as an image"},
    Way{HostFileKind::Font, "font", "installed as a font"},
    Way{HostFileKind::Other, "kermit", "by Kermit"},
};

/// How a file goes to a place: as it was asked, else by what it holds. An image or a font that is
/// given a device of its own goes there as a file.
const Way& WayOf(const Journey& journey, const Travel& travel) {
    for (const Way& way : Ways)
        if (travel.by == way.name) return way;
    const HostFileKind kind = KindOf(journey.from.name);
    const bool installed = kind == HostFileKind::Image || kind == HostFileKind::Font;
    const bool elsewhere = journey.to.OnPrinter();
    for (const Way& way : Ways)
        if (way.fits == kind && !(installed && elsewhere)) return way;
    return Ways.back();
}

} // namespace

Outcome Send(Session& session, Journey journey, const Travel& travel) {
    const std::string& file = journey.from.name;
    if (!qncomm::SystemFiles().Exists(file))
        return Refused(ExitStatus::Error, "There is no file " + file + " on this machine.");
    const Way& way = WayOf(journey, travel);
    if (journey.to.name.empty()) {
        Outcome outcome;
        const auto name = ForPrinter(qncomm::FileNameOf(file), outcome);
        if (!name) return outcome;
        journey.to.name = *name;
    }
    const auto load = [&](auto install) { return CarryLoad(session, install); };
    return Tell(session, journey, way.told, file, [&] {
        switch (way.fits) {
        case HostFileKind::Program:
            return UploadModule(session, file, qncomm::Utf8FromPrinter(journey.to.Full()));
        case HostFileKind::Image:
            return load([&] { session.Control().InstallImage(file, travel.permanent); });
        case HostFileKind::Font:
            return load([&] { session.Control().InstallFont(file, travel.permanent); });
        case HostFileKind::Other:
            break;
        }
        return SendByKermit(session, file, journey.to.Full(), travel.resume);
    });
}

Outcome Fetch(Session& session, const Journey& journey, const Travel& travel) {
    return Tell(session, journey, "by Kermit", journey.to.name, [&] {
        return FetchByKermit(session, journey.from.Full(), journey.to.name, travel.resume);
    });
}

std::string PathFor(const Place& file, const std::string& folder) {
    return qncomm::PathIn(folder, qncomm::FileNameFromPrinter(file.name));
}

} // namespace qnctl

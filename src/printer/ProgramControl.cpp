// The program in the printer's working memory.

#include "Exchange.h"
#include "common/Numbers.h"
#include "common/Text.h"

#include <algorithm>
#include <exception>

namespace qncomm {
namespace {

constexpr std::int32_t ListLineTimeout = 3000;
constexpr std::int32_t RunTimeout = 30000;
constexpr std::int32_t SaveTimeout = 45000;
constexpr std::int32_t StartDelay = 500;
constexpr std::int32_t RemovalDelay = 1000;

constexpr std::string_view ListFirstLine = "List 1";
constexpr std::string_view PlantedLine = R"(1 PRINT "RUN MODE":END)";
constexpr std::string_view PlantedOutput = "RUN MODE";
constexpr std::string_view RemovePlanted = "1"; // a bare line number deletes the line
constexpr std::string_view EmptyListing = "Ok";

} // namespace

void clsQuorin::Reboot() {
    SetPrinterDevices(nullptr);
    Link().Reboot();
    Link().SetImmediateMode(false);
}

void clsQuorin::NewProgram() {
    Run({.line = "NEW", .timeout = SaveTimeout});
}

void clsQuorin::SaveProgram(std::string_view sFileName) {
    Run({.line = "SAVE" + Quoted(sFileName) + ",L",
         .timeout = SaveTimeout,
         .dirty = {std::string(sFileName)}});
}

std::int32_t clsQuorin::Fre() {
    const auto reply = Run({.line = "PRINT FRE(0)"});
    return reply ? ToInt32(Val(LineAt(*reply, 1))) : 0;
}

void clsQuorin::UploadQNProgram(const std::string& sFileName) {
    const auto reply = Run({.line = "LIST", .listing = true});
    if (!reply) return;
    std::string listing;
    for (std::size_t i = 1; i + 1 < reply->size(); ++i)
        listing.append((*reply)[i]).append(CrLf);
    mFiles.Save(sFileName, listing);
}

/// Runs body while the program has a line 1 that prints and ends. Whatever happens, the line is
/// deleted again.
void clsQuorin::WithPlantedLine(const std::function<void()>& body) {
    try {
        SendLine(PlantedLine);
        body();
        SendLine(RemovePlanted);
    } catch (...) {
        RemovePlantedLine();
        throw;
    }
}

/// Deletes the planted line after an error, which gave the claim back and is about to be reported:
/// no other may take its place.
void clsQuorin::RemovePlantedLine() {
    try {
        const PortClaim claim = Claim();
        if (!claim) return;
        SendLine(RemovePlanted);
        Link().Delay(RemovalDelay);
        Link().PurgePort();
    } catch (const std::exception& error) {
        mDesktop.Log(std::string("the planted line 1 stayed: ") + error.what());
    }
}

void clsQuorin::RunProgram() {
    PortClaim claim = Claim();
    if (!claim) return;
    Report("Starting printer program...", NoProgress);
    const Reply firstLine = Ask(ListFirstLine, ListLineTimeout);
    if (LineAt(firstLine, 1) == EmptyListing) WithPlantedLine([this] { Ask("RUN", RunTimeout); });
    SendLine("RUN");
    Link().Delay(StartDelay);
    Link().PurgePort();
    claim.Release();
    ReportDone("Ok");
}

bool clsQuorin::IsProgramRunable() {
    PortClaim claim = Claim();
    if (!claim) return false;
    Report("Checking printer program status...", NoProgress);
    const Reply firstLine = Ask(ListFirstLine, ListLineTimeout);
    bool runs = false;
    if (firstLine.empty() || LineAt(firstLine, 1) == EmptyListing) {
        WithPlantedLine([&] { runs = TestRun(); });
        Link().Delay(RemovalDelay);
    }
    Link().PurgePort();
    claim.Release();
    return runs;
}

/// Runs the program with the planted line; shows the first error in its reply.
bool clsQuorin::TestRun() {
    const Reply reply = Ask("RUN", RunTimeout, false);
    if (LineAt(reply, 1) == PlantedOutput || LineAt(reply, 2) == PlantedOutput) return true;
    const auto error = std::ranges::find_if(
        reply, [](const std::string& line) { return line.find("Error") != std::string::npos; });
    if (error != reply.end())
        AskPerson({.text = "Printer reports " + *error,
                   .icon = MsgBoxIcon::Exclamation,
                   .title = "Quorin SDK"});
    return false;
}

} // namespace qncomm

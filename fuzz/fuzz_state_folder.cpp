// Any files in the folder that keeps a printer's state: for each a byte that chooses the place, the
// name and its line end, and the content behind its length. Whatever stands there, the printer
// starts and answers; what it has kept, it finds again.

#include "Choices.h"
#include "simulator/VirtualPrinter.h"
#include "testing/core/ScratchFolder.h"

#include <filesystem>
#include <string>

namespace qnsim {
namespace {

using qncomm::fuzz::Choices;
using qncomm::fuzz::Promise;
using qncomm::testing::ScratchFolder;

constexpr int MostFiles = 8;

/// A name that stays within the folder.
std::string Harmless(std::string_view chosen) {
    std::string name(chosen.substr(0, 100));
    for (char& c : name)
        if (c == '/' || c == '\0') c = '_';
    return name.empty() || name == "." || name == ".." ? "f-X" : name;
}

void Fill(const ScratchFolder& folder, Choices& choices) {
    for (const char* device : {"c", "card1", "rom"})
        folder.MakeFolder(device);
    folder.Write("setup.txt", ""); // a folder without it is new
    for (int file = 0; file < MostFiles && !choices.IsOver(); ++file) {
        static constexpr const char* Places[] = {"", "c/", "card1/", "rom/"};
        const std::string place = Places[choices.Next() % 4];
        const std::string name = place.empty() ? "setup.txt" : Harmless(choices.TakeUntil('\n'));
        if (choices.Next() % 16 == 15 && !folder.Has(place + name))
            folder.MakeFolder(place + name);
        else
            folder.Write(place + name, choices.Take(choices.NextWord()));
    }
}

std::string Ask(VirtualPrinter& printer, std::string_view line, Micros& now) {
    std::string said;
    printer.FromHost(line, now);
    for (int slice = 0; slice < 50; ++slice) {
        now += 1000;
        said += printer.ToHost(now, 1 << 20);
    }
    return said;
}

/// The files of a printer that is started on the folder; nothing when it tells that it does not
/// keep them.
std::string Start(const std::string& folder, std::string_view line) {
    Options options;
    options.bootMs = 0;
    options.stateDir = folder;
    VirtualPrinter printer(options);
    Micros now = 1;
    printer.HostOpened(now);
    Ask(printer, "\x11\rIMMEDIATE ON\r", now);
    Promise(Ask(printer, "PRINT 654321+1\r", now).find("654322") != std::string::npos);
    Ask(printer, line, now);
    if (!printer.Problem().empty()) return {};
    return Ask(printer, "FILES \"c:\",A\r", now);
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const qncomm::testing::ScratchFolder folder;
    qncomm::fuzz::Choices choices(data, size);
    qnsim::Fill(folder, choices);
    const std::string kept = qnsim::Start(folder.Path(), "COPY \"c:PRICES.DAT\",\"c:KEPT\"\r");
    const std::string found = qnsim::Start(folder.Path(), "\r");
    if (kept.find("KEPT") != std::string::npos) qncomm::fuzz::Promise(kept == found);
    return 0;
}

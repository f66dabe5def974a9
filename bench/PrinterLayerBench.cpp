// How the command layer's cost grows: listings, the font filter and the upload of a module, through
// the whole core. Each is linear when its time per entry stays the same over the sizes; the
// complexity that the run finds is printed behind each. Between 10,000 and 100,000 entries the
// records outgrow the processor's cache.

#include "common/MemorySettings.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/printer/InstantPrinter.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace {

using qncomm::clsDataLink;
using qncomm::clsQuorin;
using qncomm::Desktop;
using qncomm::LinkDialogs;
using qncomm::LinkHost;
using qncomm::MemorySettings;
using qncomm::MsgBox;
using qncomm::MsgBoxResult;
using qncomm::ShownWindow;

class NoDesktop : public Desktop {
  public:
    MsgBoxResult ShowMsgBox(const MsgBox& box) override { throw std::runtime_error(box.text); }
    void Log(std::string_view /*sLine*/) override {}
};

class NoDialogs : public LinkDialogs {
  public:
    std::int16_t ShowCommSettings(clsDataLink& /*link*/) override { return 2; }
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override { return nullptr; }
};

/// The core on a printer with lEntries files and fonts.
class Core {
  public:
    explicit Core(std::int64_t lEntries) {
        for (std::int64_t i = 0; i < lEntries; ++i) {
            const std::string number = std::to_string(i);
            mFiles += "FILE" + number + ".PRG      " + number + "\r\n";
            mFonts += "FONT" + number + "\r\n";
        }
        mLink.SetSerialPort(&mPrinter);
        mLink.SetRegSettings(std::make_shared<MemorySettings>());
        mLink.SetImmediateMode(true);
    }

    clsQuorin& Quorin() { return mQuorin; }

  private:
    std::string AnswerTo(const std::string& line) {
        const std::string counts = "100 BYTES FREE  20 BYTES USED\r\n";
        std::string body;
        if (line.starts_with("PRINT SYSVAR")) body = "-1\r\n2\r\n";
        if (line.starts_with("PRINT VERSION")) body = "v8.10\r\nR7G\r\n";
        if (line.starts_with("FILES")) body = "FILES ON C:\r\n" + mFiles + counts;
        if (line == "FONTS") body = mFonts + counts;
        if (line.find(" REM ") != std::string::npos) return {}; // typed lines have no answer
        return line + "\r\n" + body + "Ok\r\n";
    }

    std::string mFiles;
    std::string mFonts;
    InstantPrinter mPrinter{[this](const std::string& line) { return AnswerTo(line); }};
    NoDesktop mDesktop;
    NoDialogs mDialogs;
    clsDataLink mLink{LinkHost{mPrinter, mDesktop, mDialogs, qncomm::SystemFiles()}};
    clsQuorin mQuorin{mLink, mDesktop, qncomm::SystemFiles()};
};

void CountPerEntry(benchmark::State& state, std::size_t seen, std::int64_t expected) {
    if (seen != static_cast<std::size_t>(expected)) state.SkipWithError("not all arrived");
    state.SetItemsProcessed(state.iterations() * expected);
    state.SetComplexityN(expected);
}

void ListFiles(benchmark::State& state) {
    Core core(state.range(0));
    std::string device = "c:";
    for ([[maybe_unused]] auto _ : state)
        core.Quorin().Files(device);
    CountPerEntry(state, core.Quorin().PrinterDevices()->Item("c:")->Files->Count(),
                  state.range(0));
}

void ListFontsFiltered(benchmark::State& state) {
    Core core(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        core.Quorin().Fonts(true);
    CountPerEntry(state, core.Quorin().PrinterDevices()->Item("fonts:")->Files->Count(),
                  state.range(0));
}

void UploadModule(benchmark::State& state) {
    Core core(0);
    std::string text;
    for (std::int64_t i = 1; i <= state.range(0); ++i)
        text += std::to_string(i) + " REM a line of the usual length for a module\r\n";
    text.resize(text.size() - 2);
    for ([[maybe_unused]] auto _ : state) {
        std::string target = "tmp:M.PRG";
        if (!core.Quorin().ModuleUpload("", target, text)->IsEmpty())
            state.SkipWithError("errors were reported");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

BENCHMARK(ListFiles)->RangeMultiplier(10)->Range(1000, 100000)->Arg(400000)->Complexity();
BENCHMARK(ListFontsFiltered)->RangeMultiplier(10)->Range(1000, 100000)->Arg(400000)->Complexity();
BENCHMARK(UploadModule)->RangeMultiplier(10)->Range(100, 10000)->Complexity();

} // namespace

BENCHMARK_MAIN();

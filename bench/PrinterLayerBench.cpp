// How the command layer's cost grows: listings, the font filter and the upload of a module, through
// the whole core. Each is linear when its time per entry stays the same over the sizes; the
// complexity that the run finds is printed behind each. Between 10,000 and 100,000 entries the
// records outgrow the processor's cache.

#include "LayerCore.h"

#include <benchmark/benchmark.h>

namespace {

/// A printer with that many files and fonts.
LayerReplies Entries(std::int64_t count) {
    LayerReplies replies;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        replies.files += "FILE" + number + ".PRG      " + number + "\r\n";
        replies.fonts += "FONT" + number + "\r\n";
    }
    return replies;
}

void CountPerEntry(benchmark::State& state, std::size_t seen, std::int64_t expected) {
    if (seen != static_cast<std::size_t>(expected)) state.SkipWithError("not all arrived");
    state.SetItemsProcessed(state.iterations() * expected);
    state.SetComplexityN(expected);
}

void ListFiles(benchmark::State& state) {
    LayerCore core(Entries(state.range(0)));
    std::string device = "c:";
    for ([[maybe_unused]] auto _ : state)
        core.Quorin().Files(device);
    CountPerEntry(state, core.Quorin().PrinterDevices()->Item("c:")->Files->Count(),
                  state.range(0));
}

void ListFontsFiltered(benchmark::State& state) {
    LayerCore core(Entries(state.range(0)));
    for ([[maybe_unused]] auto _ : state)
        core.Quorin().Fonts(true);
    CountPerEntry(state, core.Quorin().PrinterDevices()->Item("fonts:")->Files->Count(),
                  state.range(0));
}

void UploadModule(benchmark::State& state) {
    LayerCore core({});
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

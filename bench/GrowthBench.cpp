// How the time of work on what a printer sends grows with how much it sends: ten times as many rows
// of a listing, items of a setup, errors of a module and keys of a collection, in one run, best of
// some turns, in time of the processor. Ten is linear; a little more is memory that outgrows its
// cache.
//
//   scripts/build bench growth_bench && build-bench/bin/growth_bench

#include "LayerCore.h"

#include "common/Collection.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace {

constexpr int Turns = 3;

void Require(bool all) {
    if (!all) throw std::runtime_error("not all arrived");
}

/// A text of so many rows, each of which rowOf makes of its number from 1.
template <class RowOf>
std::string Rows(std::size_t count, RowOf rowOf) {
    std::string text;
    for (std::size_t i = 1; i <= count; ++i)
        text += rowOf(std::to_string(i)) + "\r\n";
    return text;
}

/// Of the processor: on a machine with other work, what takes longer waits more than in proportion.
double SecondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double Files(std::size_t count) {
    LayerCore core({.files = Rows(count, [](const std::string& i) { return "F" + i + "  1"; })});
    std::string device = "c:";
    const auto start = std::clock();
    core.Quorin().Files(device);
    const double seconds = SecondsSince(start);
    Require(core.Quorin().PrinterDevices()->Item(device)->Files->Count() == count);
    return seconds;
}

double Fonts(std::size_t count) {
    LayerCore core({.fonts = Rows(count, [](const std::string& i) { return "F" + i; })});
    const auto start = std::clock();
    core.Quorin().Fonts(true);
    const double seconds = SecondsSince(start);
    Require(core.Quorin().PrinterDevices()->Item("fonts:")->Files->Count() == count);
    return seconds;
}

double Setup(std::size_t count) {
    LayerCore core({.setup = Rows(count, [](const std::string& i) { return "A," + i + ",1"; })});
    const auto start = std::clock();
    core.Quorin().GetSetup();
    const double seconds = SecondsSince(start);
    Require(core.Quorin().PrinterSetupItems()->Count() == count);
    return seconds;
}

double Errors(std::size_t count) {
    LayerCore core(
        {.errors = Rows(count, [](const std::string& i) { return "Error 1 in line " + i + ":"; })});
    std::string target = "tmp:M.PRG";
    std::string text = "1 REM a module";
    const auto start = std::clock();
    const auto errors = core.Quorin().ModuleUpload("", target, text);
    const double seconds = SecondsSince(start);
    Require(errors->Count() == count);
    return seconds;
}

double Keys(std::size_t count) {
    const auto start = std::clock();
    qncomm::Collection<std::size_t> collection;
    for (std::size_t i = 0; i < count; ++i)
        collection.Add(i, "KEY" + std::to_string(i));
    std::size_t sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += collection.Item("key" + std::to_string(i));
    const double seconds = SecondsSince(start);
    Require(sum == count * (count - 1) / 2);
    return seconds;
}

struct Subject {
    const char* name;
    std::size_t fewer; ///< the greater number is ten times that
    double (*seconds)(std::size_t count);
};

// A module's errors take more bytes each: a million of them are more than a reply may have.
constexpr std::array Subjects{Subject{"rows of a listing of files", 100'000, Files},
                              Subject{"rows of a listing of fonts, filtered", 100'000, Fonts},
                              Subject{"items of a setup", 100'000, Setup},
                              Subject{"errors of a module", 50'000, Errors},
                              Subject{"keys, each added and found", 100'000, Keys}};

double Best(const Subject& of, std::size_t count) {
    double best = 1e9;
    for (int turn = 0; turn < Turns; ++turn)
        best = std::min(best, of.seconds(count));
    return best;
}

} // namespace

int main() try {
    std::printf("%-38s %10s %9s %9s %7s\n", "ten times as many", "up to", "ms", "ms", "ratio");
    for (const Subject& subject : Subjects) {
        const double fewer = Best(subject, subject.fewer);
        const double more = Best(subject, 10 * subject.fewer);
        std::printf("%-38s %10zu %9.1f %9.1f %7.1f\n", subject.name, 10 * subject.fewer,
                    1000 * fewer, 1000 * more, more / fewer);
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "growth_bench: %s\n", error.what());
    return 1;
}

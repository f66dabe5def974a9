// How fast the terminal takes bytes, at 80 by 24 and at 300 by 300, beside a program that only cuts
// the same bytes into lines; and what a terminal weighs. All in one run, in turns, best of them.

#include "../Memory.h"
#include "TerminalStreams.h"

#include "terminal/Terminal.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using qncomm::Terminal;
using qncomm::bench::ResidentKilobytes;
using qncomm::bench::Workload;
using qncomm::bench::Workloads;

constexpr std::size_t PieceBytes = 4096; // as much as one read of a port gives
constexpr int Turns = 9;

/// The least that a program does with text from a line: cut it and keep the newest lines.
class LineSplitter {
  public:
    void Write(std::string_view bytes) {
        while (!bytes.empty()) {
            const std::size_t end = std::min(bytes.find('\n'), bytes.size() - 1);
            mLine.append(bytes.substr(0, end + 1));
            if (bytes[end] == '\n') {
                std::swap(mLines[mNext], mLine);
                mLine.clear();
                mNext = (mNext + 1) % mLines.size();
            }
            bytes.remove_prefix(end + 1);
        }
    }

  private:
    std::vector<std::string> mLines = std::vector<std::string>(10'300);
    std::string mLine;
    std::size_t mNext = 0;
};

Terminal::Options Sized(std::int16_t rows, std::int16_t columns) {
    Terminal::Options options;
    options.rows = rows;
    options.columns = columns;
    return options;
}

template <class Target>
double SecondsFor(Target& target, std::string_view bytes) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t at = 0; at < bytes.size(); at += PieceBytes)
        target.Write(bytes.substr(at, PieceBytes));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void MeasureSpeed() {
    std::printf("%-28s %9s %9s %7s %9s %7s\n", "MB/s (best of 9 turns)", "24x80", "300x300",
                "ratio", "splitter", "ratio");
    for (const Workload& workload : Workloads()) {
        Terminal small(Sized(24, 80));
        Terminal large(Sized(300, 300));
        LineSplitter splitter;
        std::array<double, 3> best{1e9, 1e9, 1e9};
        for (int turn = 0; turn < Turns; ++turn) {
            best[0] = std::min(best[0], SecondsFor(small, workload.bytes));
            best[1] = std::min(best[1], SecondsFor(large, workload.bytes));
            best[2] = std::min(best[2], SecondsFor(splitter, workload.bytes));
        }
        const double megabytes = static_cast<double>(workload.bytes.size()) / 1e6;
        std::printf("%-28s %9.1f %9.1f %7.2f %9.1f %7.2f\n", workload.name, megabytes / best[0],
                    megabytes / best[1], best[0] / best[1], megabytes / best[2], best[2] / best[1]);
    }
}

void MeasureWeight(const char* name, const std::string& bytes) {
    const long before = ResidentKilobytes();
    const auto terminal = std::make_unique<Terminal>();
    terminal->Write(bytes);
    std::printf("%-52s %6ld kB\n", name, ResidentKilobytes() - before);
}

void MeasureWeights() {
    std::string wide;
    std::string rainbow;
    for (int line = 0; line < 10'400; ++line)
        wide += std::string(299, static_cast<char>('a' + line % 26)) + "\r\n";
    for (int line = 0; line < 10'400; ++line) {
        for (int cell = 0; cell < 299; ++cell)
            rainbow += "\x1B[3" + std::to_string(cell % 8) + "mx";
        rainbow += "\r\n";
    }
    std::printf("\nResident memory of a terminal of 300 by 300\n");
    MeasureWeight("fresh", "");
    MeasureWeight("10,000 lines of 299 characters scrolled off", wide);
    MeasureWeight("the same, another colour in each cell", rainbow);
}

void MeasureConstruction() {
    constexpr int Count = 1000;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < Count; ++i)
        Terminal().Write("x");
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    std::printf("\nMade, written to and destroyed: %.1f us each, mean of %d\n",
                taken.count() / Count, Count);
}

} // namespace

int main() {
    // What is freed goes back to the system, so that each weight is a terminal's own.
    mallopt(M_MMAP_THRESHOLD, 64 * 1024);
    mallopt(M_TRIM_THRESHOLD, 0);
    MeasureWeights();
    std::printf("\n");
    MeasureSpeed();
    MeasureConstruction();
}

// What one control costs: until it is ready for its first call, in memory, and when it is asked for
// a list that it has. Beside it, in the same run, what it stands on: a serial control and a grid.

#include "Memory.h"
#include "testing/stack/AssemblyRig.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <memory>

namespace {

using qncomm::ControlAssembly;
using qncomm::PDQComm;
using qncomm::PortBindings;
using qncomm::Terminal;
using qncomm::bench::ResidentKilobytes;
using qncomm::testing::AssemblyRig;
using Clock = std::chrono::steady_clock;

constexpr int Count = 1000;

double MicrosSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

struct Times {
    double mean = 0;
    double worst = 0;
};

template <class Make>
Times Measure(Make make) {
    Times times;
    for (int i = 0; i < Count; ++i) {
        const auto start = Clock::now();
        make();
        const double taken = MicrosSince(start);
        times.mean += taken / Count;
        times.worst = std::max(times.worst, taken);
    }
    return times;
}

long AllocatedBytes() {
    const auto info = mallinfo2();
    return static_cast<long>(info.uordblks + info.hblkhd);
}

void MeasureConstruction(AssemblyRig& rig) {
    const Times control = Measure([&] { rig.Assemble("sim:R7G"); });
    const Times bare = Measure([&] {
        const PDQComm serial(rig.mReactor, PortBindings());
        const Terminal grid;
    });
    std::printf("%-52s %9s %9s\n", "us, of 1000", "mean", "worst");
    std::printf("%-52s %9.1f %9.1f\n", "a control, put together, wired, with its settings",
                control.mean, control.worst);
    std::printf("%-52s %9.1f %9.1f\n", "a serial control and a grid alone", bare.mean, bare.worst);
    std::printf("%-52s %9.2f\n", "ratio", control.mean / bare.mean);
}

void MeasureWeight(AssemblyRig& rig) {
    rig.mAssembly.reset();
    malloc_trim(0);
    const long before = ResidentKilobytes();
    rig.Assemble("sim:R7G");
    std::printf("\n%-52s %9ld kB resident\n", "a control with its grid of 300 by 300, fresh",
                ResidentKilobytes() - before);
    for (int row = 0; row < 300; ++row)
        rig.mAssembly->Viewport().Show(std::string(299, 'x') + "\r\n");
    std::printf("%-52s %9ld kB resident\n", "the same with its screen full of text",
                ResidentKilobytes() - before);
}

/// What is left behind; the first ones are left out, since they fill what lasts for the process.
void MeasureLeftovers(AssemblyRig& rig) {
    const auto makeMany = [&](int count) {
        for (int i = 0; i < count; ++i)
            rig.Assemble("sim:R7G");
        rig.mAssembly.reset();
        malloc_trim(0);
    };
    makeMany(10);
    const long allocated = AllocatedBytes();
    const long resident = ResidentKilobytes();
    makeMany(Count);
    std::printf("\n%-52s %+9ld bytes allocated, %+ld kB resident\n",
                "1,000 controls made and destroyed leave", AllocatedBytes() - allocated,
                ResidentKilobytes() - resident);
}

/// False when bytes have gone to the printer.
bool MeasureCachedList(AssemblyRig& rig) {
    rig.Assemble("sim:R7G");
    for (int i = 0; i < 300; ++i)
        rig.Control().CopyFile("c:PRICES.DAT", "c:FILE" + std::to_string(i) + ".DAT");
    const std::size_t entries = rig.Control().Files("c:")->Count();
    rig.TakeSent();
    std::size_t seen = 0;
    const Times call = Measure([&] { seen += rig.Control().Files("c:")->Count(); });
    const Times walk = Measure([&] {
        for (const auto& file : *rig.Control().Files("c:"))
            seen += file->Name.empty() ? 0 : 1;
    });
    const std::size_t sent = rig.TakeSent().size();
    std::printf("\n%-52s %9zu entries, %zu bytes on the line\n", "Files from the list that is kept",
                entries, sent);
    std::printf("%-52s %9.3f us a call\n", "the call alone", call.mean);
    std::printf("%-52s %9.4f us an entry\n", "the call and a walk over all entries",
                walk.mean / static_cast<double>(entries));
    return sent == 0 && seen == 2 * Count * entries;
}

} // namespace

int main() {
    mallopt(M_MMAP_THRESHOLD, 64 * 1024);
    AssemblyRig rig;
    MeasureWeight(rig);
    MeasureConstruction(rig);
    MeasureLeftovers(rig);
    return MeasureCachedList(rig) ? 0 : 1;
}

#include "PeerRig.h"

#include "PeerRun.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>

namespace qncomm::testing {

using namespace transfer;

namespace {

Time Now() {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

std::vector<MemoryFile> KeptFiles() {
    std::string all;
    for (int c = 0; c < 256; ++c) {
        all.push_back(static_cast<char>(c));
    }
    std::string nasty;
    while (nasty.size() < 65536) {
        nasty += "\x10\x11\x13\x18\x90\x91\x93\x98@\r@\x8D";
    }
    nasty.resize(65536);
    return {{"empty.bin", ""},
            {"one.bin", "x"},
            {"all.bin", all},
            {"nasty.bin", nasty},
            {"random.bin", RandomBytes(1 << 20, 11)},
            {"text.txt", TextBytes(1 << 20, 12)},
            {"a name.bin", RandomBytes(3000, 13)}};
}

void ExpectArrived(const ScratchFolder& folder, const std::vector<MemoryFile>& files) {
    for (const auto& file : files) {
        EXPECT_TRUE(folder.Has(file.name)) << file.name;
        EXPECT_TRUE(folder.Read(file.name) == file.content) << file.name;
    }
}

void ExpectReceived(const MemorySink& sink, const std::vector<MemoryFile>& files) {
    ASSERT_EQ(sink.Whole().size(), files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_EQ(sink.Whole()[i].name, files[i].name);
        EXPECT_TRUE(sink.Whole()[i].content == files[i].content) << files[i].name;
    }
}

bool PeersAreInstalled(const std::vector<std::string>& programs) {
    for (const auto& program : programs) {
        if (PeerProcess::IsInstalled(program)) continue;
        if (std::getenv("CI") != nullptr) { // NOLINT(concurrency-mt-unsafe): no threads here
            ADD_FAILURE() << program << " is missing";
        } else {
            std::cout << "not run: " << program << " is missing\n";
        }
        return false;
    }
    return true;
}

bool RunAgainst(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
                Time limit) {
    PeerRun run(engine, source, sink, peer);
    for (const Time end = Now() + limit; Now() < end;) {
        if (run.Step(Now())) continue;
        if (run.IsOver() && peer.HasEnded()) return true;
        run.WaitFor();
    }
    return false;
}

} // namespace qncomm::testing

#include "PeerRig.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <poll.h>
#include <sstream>

namespace qncomm::transfer::testing {

namespace {

Time Now() {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

// How long an end may take to be over after the program at the other one has ended.
constexpr Time kAfterPeer = std::chrono::seconds(5);

void WaitFor(PeerProcess& peer, bool bWrite, Time span) {
    pollfd ready{peer.Descriptor(), static_cast<short>(bWrite ? POLLIN | POLLOUT : POLLIN), 0};
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(span).count();
    poll(&ready, peer.HasEnded() ? 0 : 1, static_cast<int>(std::clamp<std::int64_t>(wait, 0, 100)));
}

} // namespace

ScratchFolder::ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "transfer-XXXXXX").string();
    mPath = mkdtemp(name.data());
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

void ScratchFolder::Put(const MemoryFile& file) const {
    std::ofstream(mPath / file.sName, std::ios::binary) << file.content;
}

std::optional<std::string> ScratchFolder::Get(const std::string& sName) const {
    std::ifstream in(mPath / sName, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

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
        const auto content = folder.Get(file.sName);
        EXPECT_TRUE(content && *content == file.content) << file.sName;
    }
}

void ExpectReceived(const MemorySink& sink, const std::vector<MemoryFile>& files) {
    ASSERT_EQ(sink.Whole().size(), files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_EQ(sink.Whole()[i].sName, files[i].sName);
        EXPECT_TRUE(sink.Whole()[i].content == files[i].content) << files[i].sName;
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
    const Time start = Now();
    Time end = start + limit;
    engine.Start(start);
    for (Time now = start; now < end; now = Now()) {
        const bool ended = peer.HasEnded();
        const std::string arrived = peer.Read();
        if (!arrived.empty()) engine.Receive(arrived, now);
        if (const auto due = engine.NextDeadline(); due && *due <= now) engine.Tick(now);
        const std::string_view output = ServedOutput(engine, source, sink, now);
        // What is said to a program that has ended is not heard, and counts as said.
        const std::size_t sent = ended ? output.size() : peer.Write(output);
        engine.Sent(sent, now);
        if (ended && arrived.empty()) {
            if (engine.IsOver()) return true;
            end = std::min(end, now + kAfterPeer);
        }
        const auto due = engine.NextDeadline();
        const bool idle = arrived.empty() && sent == 0;
        if (idle) WaitFor(peer, !output.empty(), due ? *due - now : std::chrono::milliseconds(20));
    }
    return false;
}

} // namespace qncomm::transfer::testing

#include "PeerRig.h"
#include "PeerRun.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

// Kermit that streams, against the programs that can.
namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

KermitOptions Reliable() {
    KermitOptions options;
    options.reliable = true;
    return options;
}

std::vector<std::string> CKermit(const std::string& action) {
    return {"kermit", "-Y", "-q", "-C",
            "set file type binary, set transfer mode manual, set file names literal, "
            "set file collision overwrite, set reliable on, set streaming on, "
                + action + ", exit"};
}

// Runs until the engine is over, with the byte at `flipAt` damaged on the way to the program and
// back.
bool RunDamaged(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
                std::uint64_t flipAt, Time limit) {
    LineSettings line;
    line.faults.flipAt = flipAt;
    PeerRun run(engine, source, sink, peer, line);
    const auto now = [] {
        return std::chrono::duration_cast<Time>(
            std::chrono::steady_clock::now().time_since_epoch());
    };
    for (const Time end = now() + limit; now() < end;) {
        if (run.Step(now())) continue;
        if (run.IsOver()) return true;
        run.WaitFor();
    }
    return false;
}

void SendTo(const std::vector<std::string>& command) {
    if (!PeersAreInstalled({command[0]})) return;
    const ScratchFolder folder;
    PeerProcess peer(command, folder.Path());
    KermitSender sender(Reliable());
    const auto files = KeptFiles();
    MemorySource source(files);
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, 50s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    EXPECT_EQ(sender.Progress().repairs, 0U);
    ExpectArrived(folder, files);
}

void ReceiveFrom(std::vector<std::string> command, const std::string& names) {
    if (!PeersAreInstalled({command[0]})) return;
    const ScratchFolder folder;
    const auto files = KeptFiles();
    for (const auto& file : files) {
        folder.Write(file.name, file.content);
        if (names.empty()) command.push_back(file.name);
    }
    PeerProcess peer(command, folder.Path());
    KermitReceiver receiver(Reliable());
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, 50s));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    EXPECT_EQ(receiver.Progress().repairs, 0U);
    ExpectReceived(sink, files);
}

} // namespace

TEST(KermitStreamingPeers, CKermitReceivesWhatIsSent) {
    SendTo(CKermit("receive"));
}

TEST(KermitStreamingPeers, CKermitSendsWhatIsReceived) {
    std::string names;
    for (const auto& file : KeptFiles())
        names += " {" + file.name + "}";
    ReceiveFrom(CKermit("msend" + names), names);
}

TEST(KermitStreamingPeers, GKermitReceivesWhatIsSent) {
    SendTo({"gkermit", "-q", "-i", "-P", "-w", "-r"});
}

TEST(KermitStreamingPeers, GKermitSendsWhatIsReceived) {
    ReceiveFrom({"gkermit", "-q", "-i", "-P", "-s"}, {});
}

// It ends the session at the first damage, but goes on serving: the file is sent again in windows.
TEST(KermitStreamingPeers, AServerThatGivesUpStreamingGetsTheFileInWindows) {
    if (!PeersAreInstalled({"kermit"})) return;
    const ScratchFolder folder;
    PeerProcess peer(CKermit("server"), folder.Path());
    KermitSender sender(Reliable());
    const MemoryFile file{"a.bin", RandomBytes(100000, 6)};
    MemorySource source({file});
    EXPECT_TRUE(RunDamaged(sender, &source, nullptr, peer, 60000, 40s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    EXPECT_EQ(source.Closed(), std::vector<bool>{true});
    EXPECT_GE(sender.Progress().repairs, 1U);
    ExpectArrived(folder, {file});
}

TEST(KermitStreamingPeers, AReceiverThatLeavesBecauseOfDamageIsSaidWithItsReason) {
    if (!PeersAreInstalled({"kermit"})) return;
    const ScratchFolder folder;
    PeerProcess peer(CKermit("receive"), folder.Path());
    KermitSender sender(Reliable());
    MemorySource source({{"a.bin", RandomBytes(100000, 6)}});
    EXPECT_TRUE(RunDamaged(sender, &source, nullptr, peer, 60000, 40s));
    EXPECT_EQ(sender.Outcome(), Outcome::CancelledThere);
    EXPECT_NE(sender.Reason().find("reliable link"), std::string::npos) << sender.Reason();
    EXPECT_EQ(source.Closed(), std::vector<bool>{false});
}

TEST(KermitStreamingPeers, DamageOfWhatAProgramStreamsIsNeverTakenForTheFile) {
    for (const std::string program : {"kermit", "gkermit"}) {
        if (!PeersAreInstalled({program})) continue;
        const ScratchFolder folder;
        const MemoryFile file{"a.bin", RandomBytes(100000, 6)};
        folder.Write(file.name, file.content);
        PeerProcess peer(program == "kermit"
                             ? CKermit("send a.bin")
                             : std::vector<std::string>{"gkermit", "-q", "-i", "-P", "-s", "a.bin"},
                         folder.Path());
        KermitReceiver receiver(Reliable());
        MemorySink sink;
        EXPECT_TRUE(RunDamaged(receiver, nullptr, &sink, peer, 60000, 40s)) << program;
        EXPECT_NE(receiver.Outcome(), Outcome::Running);
        for (const auto& whole : sink.Whole())
            EXPECT_TRUE(whole.content == file.content) << program;
        RecordProperty(program, receiver.Reason());
        std::cout << program << ": " << receiver.Reason() << "\n";
    }
}

} // namespace qncomm::testing

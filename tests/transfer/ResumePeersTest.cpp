#include "PeerRig.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

// A transfer that broke off is continued with another program at the other end: only the rest
// travels.
namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

constexpr std::size_t Have = 150000;

std::string Content() {
    return RandomBytes(200000, 31);
}

// What the program says and hears is counted by what the engine put.
void SendTheRest(TransferEngine& sender, const std::vector<std::string>& command) {
    if (!PeersAreInstalled({command[0]})) return;
    const ScratchFolder folder;
    folder.Write("part.bin", Content().substr(0, Have));
    PeerProcess peer(command, folder.Path());
    MemorySource source(std::vector<MemoryFile>{{"part.bin", Content()}});
    source.resume = true;
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, 50s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    EXPECT_GE(source.FirstRead(), Have - 4096);
    ExpectArrived(folder, {{"part.bin", Content()}});
}

void ReceiveTheRest(TransferEngine& receiver, const std::vector<std::string>& command) {
    if (!PeersAreInstalled({command[0]})) return;
    const ScratchFolder folder;
    folder.Write("part.bin", Content());
    PeerProcess peer(command, folder.Path());
    MemorySink sink;
    sink.resumeFrom = Content().substr(0, Have);
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, 50s));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    ExpectReceived(sink, {{"part.bin", Content()}});
    EXPECT_FALSE(sink.gap);
}

std::vector<std::string> CKermit(const std::string& action) {
    return {"kermit", "-Y", "-q", "-C",
            "set file type binary, set transfer mode manual, set file names literal, " + action
                + ", exit"};
}

} // namespace

TEST(ResumePeers, RzGoesOn) {
    ZModemSender sender;
    SendTheRest(sender, {"rz", "-b", "-q", "-r"});
}

TEST(ResumePeers, SzGoesOn) {
    ZModemReceiver receiver;
    ReceiveTheRest(receiver, {"sz", "-b", "-q", "-r", "part.bin"});
}

TEST(ResumePeers, CKermitGoesOnReceiving) {
    KermitSender sender;
    SendTheRest(sender, CKermit("set file incomplete keep, set file collision append, receive"));
}

TEST(ResumePeers, CKermitGoesOnSending) {
    KermitReceiver receiver;
    ReceiveTheRest(receiver, CKermit("resend part.bin"));
}

} // namespace qncomm::testing

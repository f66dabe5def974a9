#include "PeerRig.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

namespace qncomm::transfer::testing {

namespace {

using namespace std::chrono_literals;

using Flags = std::vector<std::string>;

} // namespace

class ZModemPeers : public ::testing::TestWithParam<Flags> {};

TEST_P(ZModemPeers, ReceiveWhatIsSent) {
    if (!PeersAreInstalled({"rz"})) return;
    const ScratchFolder folder;
    Flags command = {"rz", "-b", "-q"};
    command.insert(command.end(), GetParam().begin(), GetParam().end());
    std::erase(command, "-8"); // is the sender's alone
    if (GetParam().size() == 2 && GetParam()[0] == "-w") command = {"rz", "-b", "-q", "-B", "8192"};
    PeerProcess peer(command, folder.Path());
    ZModemSenderOptions options;
    options.bEscapeControls = !GetParam().empty() && GetParam()[0] == "-e";
    options.subpacket = !GetParam().empty() && GetParam()[0] == "-8" ? 8192 : 1024;
    ZModemSender sender(options);
    MemorySource source(KeptFiles());
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, 50s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    EXPECT_EQ(sender.Progress().repairs, 0U);
    ExpectArrived(folder, KeptFiles());
}

TEST_P(ZModemPeers, SendWhatIsReceived) {
    if (!PeersAreInstalled({"sz"})) return;
    const ScratchFolder folder;
    Flags command = {"sz", "-b", "-q"};
    command.insert(command.end(), GetParam().begin(), GetParam().end());
    for (const auto& file : KeptFiles()) {
        folder.Put(file);
        command.push_back(file.sName);
    }
    PeerProcess peer(command, folder.Path());
    ZModemReceiver receiver;
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, 50s));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    EXPECT_EQ(receiver.Progress().repairs, 0U);
    ExpectReceived(sink, KeptFiles());
}

INSTANTIATE_TEST_SUITE_P(Settings, ZModemPeers,
                         ::testing::Values(Flags{}, Flags{"-e"}, Flags{"-8"}, Flags{"-w", "4096"}));

} // namespace qncomm::transfer::testing

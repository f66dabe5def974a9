#include "PeerRig.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

using namespace transfer;

// What the sending side is told.
struct ZModemSetting {
    bool escape;
    bool longPackets;
    bool window;
};

namespace {

using namespace std::chrono_literals;

// What a run may take; the machine may be busy with others.
constexpr Time Limit = 300s;
constexpr int Window = 4096; // bytes

std::vector<ZModemSetting> Settings() {
    std::vector<ZModemSetting> settings;
    for (const bool escape : {false, true})
        for (const bool isLong : {false, true})
            for (const bool window : {false, true})
                settings.push_back({escape, isLong, window});
    return settings;
}

} // namespace

void PrintTo(const ZModemSetting& setting, std::ostream* out) {
    *out << (setting.escape ? "all controls escaped, " : "") << (setting.longPackets ? "8" : "1")
         << " KiB" << (setting.window ? ", a window" : "");
}

class ZModemPeers : public ::testing::TestWithParam<ZModemSetting> {};

// Once with what the sender is told, once with what the receiver asks for.
TEST_P(ZModemPeers, ReceiveWhatIsSent) {
    if (!PeersAreInstalled({"rz"})) return;
    for (const bool asked : {false, true}) {
        const ScratchFolder folder;
        std::vector<std::string> command = {"rz", "-b", "-q"};
        if (asked && GetParam().escape) command.emplace_back("-e");
        if (asked && GetParam().window)
            command.insert(command.end(), {"-w", std::to_string(Window)});
        PeerProcess peer(command, folder.Path());
        ZModemSenderOptions options;
        options.escapeControls = !asked && GetParam().escape;
        options.subpacket = GetParam().longPackets ? 8192 : 1024;
        options.window = !asked && GetParam().window ? Window : 0;
        ZModemSender sender(options);
        MemorySource source(KeptFiles());
        EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, Limit));
        EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
        EXPECT_EQ(sender.Progress().repairs, 0U);
        ExpectArrived(folder, KeptFiles());
    }
}

TEST_P(ZModemPeers, SendWhatIsReceived) {
    if (!PeersAreInstalled({"sz"})) return;
    const ScratchFolder folder;
    std::vector<std::string> command = {"sz", "-b", "-q"};
    if (GetParam().escape) command.emplace_back("-e");
    if (GetParam().longPackets) command.emplace_back("-8");
    if (GetParam().window) command.insert(command.end(), {"-w", std::to_string(Window)});
    for (const auto& file : KeptFiles()) {
        folder.Write(file.name, file.content);
        command.push_back(file.name);
    }
    PeerProcess peer(command, folder.Path());
    ZModemReceiver receiver;
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, Limit));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    // A window that holds no whole subpacket stops sz until it is asked again, by whomever.
    if (!GetParam().longPackets || !GetParam().window) {
        EXPECT_EQ(receiver.Progress().repairs, 0U);
    }
    ExpectReceived(sink, KeptFiles());
}

INSTANTIATE_TEST_SUITE_P(Combinations, ZModemPeers, ::testing::ValuesIn(Settings()));

} // namespace qncomm::testing

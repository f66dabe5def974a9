#include "PeerRig.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

namespace qncomm::transfer::testing {

struct KermitSetting {
    std::size_t packet;
    unsigned window;
    unsigned check;
    KermitPrefixing prefixing;
    bool bSevenBits = false;
};

void PrintTo(const KermitSetting& setting, std::ostream* out) {
    *out << "length " << setting.packet << ", window " << setting.window << ", check "
         << setting.check << ", prefixing " << static_cast<int>(setting.prefixing)
         << (setting.bSevenBits ? ", seven bits" : "");
}

namespace {

using namespace std::chrono_literals;

std::vector<std::string> CKermit(const KermitSetting& setting, const std::string& action) {
    const std::string length = std::to_string(setting.packet);
    std::string script = "set file type binary, set transfer mode manual, set file names literal, "
                         "set file collision overwrite, set block-check "
                         + std::to_string(setting.check) + ", set window "
                         + std::to_string(setting.window) + ", set receive packet-length " + length
                         + ", set send packet-length " + length + ", set streaming off, "
                         + (setting.prefixing == KermitPrefixing::All ? "set prefixing all, "
                                                                      : "set prefixing cautious, ")
                         + (setting.bSevenBits ? "set parity space, " : "") + action + ", exit";
    return {"kermit", "-Y", "-q", "-C", script};
}

KermitOptions Options(const KermitSetting& setting) {
    KermitOptions options;
    options.packet = setting.packet;
    options.window = setting.window;
    options.check = setting.check;
    options.prefixing = setting.prefixing;
    options.bSevenBits = setting.bSevenBits;
    return options;
}

// Short packets take their time, so long files travel with the longer ones.
std::vector<MemoryFile> FilesFor(const KermitSetting& setting) {
    std::vector<MemoryFile> files = KeptFiles();
    if (setting.packet < 1000 || setting.window == 1) {
        for (auto& file : files) {
            if (file.content.size() > 100000) file.content.resize(100000);
        }
    }
    return files;
}

} // namespace

class KermitPeers : public ::testing::TestWithParam<KermitSetting> {};

TEST_P(KermitPeers, CKermitReceivesWhatIsSent) {
    if (!PeersAreInstalled({"kermit"})) return;
    const ScratchFolder folder;
    PeerProcess peer(CKermit(GetParam(), "receive"), folder.Path());
    KermitSender sender(Options(GetParam()));
    const auto files = FilesFor(GetParam());
    MemorySource source(files);
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, 50s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    EXPECT_EQ(sender.Progress().files, files.size());
    ExpectArrived(folder, files);
}

TEST_P(KermitPeers, CKermitSendsWhatIsReceived) {
    if (!PeersAreInstalled({"kermit"})) return;
    const ScratchFolder folder;
    const auto files = FilesFor(GetParam());
    std::string names;
    for (const auto& file : files) {
        folder.Put(file);
        names +=
            file.sName.find(' ') == std::string::npos ? ' ' + file.sName : " {" + file.sName + "}";
    }
    PeerProcess peer(CKermit(GetParam(), "msend" + names), folder.Path());
    KermitReceiver receiver(Options(GetParam()));
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, 50s));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    ExpectReceived(sink, files);
}

INSTANTIATE_TEST_SUITE_P(Settings, KermitPeers,
                         ::testing::Values(KermitSetting{20, 1, 1, KermitPrefixing::All},
                                           KermitSetting{90, 8, 2, KermitPrefixing::All},
                                           KermitSetting{94, 1, 3, KermitPrefixing::Cautious},
                                           KermitSetting{95, 8, 3, KermitPrefixing::All},
                                           KermitSetting{1000, 30, 3, KermitPrefixing::Cautious},
                                           KermitSetting{1000, 8, 1, KermitPrefixing::All},
                                           KermitSetting{9000, 1, 3, KermitPrefixing::Cautious},
                                           KermitSetting{9000, 30, 3, KermitPrefixing::Least},
                                           KermitSetting{1000, 8, 3, KermitPrefixing::All, true}));

class GKermitPeers : public ::testing::TestWithParam<KermitSetting> {};

TEST_P(GKermitPeers, GKermitReceivesWhatIsSent) {
    if (!PeersAreInstalled({"gkermit"})) return;
    const ScratchFolder folder;
    std::vector<std::string> command = {
        "gkermit",
        "-q",
        "-i",
        "-P",
        "-w",
        "-e",
        std::to_string(std::max<std::size_t>(GetParam().packet, 40)),
        "-r"};
    if (GetParam().bSevenBits) command.insert(command.begin() + 1, {"-p", "s"});
    PeerProcess peer(command, folder.Path());
    KermitSender sender(Options(GetParam()));
    const auto files = FilesFor(GetParam());
    MemorySource source(files);
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, 50s));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    ExpectArrived(folder, files);
}

TEST_P(GKermitPeers, GKermitSendsWhatIsReceived) {
    if (!PeersAreInstalled({"gkermit"})) return;
    const ScratchFolder folder;
    const auto files = FilesFor(GetParam());
    std::vector<std::string> command = {"gkermit", "-q", "-i", "-P"};
    if (GetParam().bSevenBits) command.insert(command.end(), {"-p", "s"});
    command.emplace_back("-s");
    for (const auto& file : files) {
        folder.Put(file);
        command.push_back(file.sName);
    }
    PeerProcess peer(command, folder.Path());
    KermitReceiver receiver(Options(GetParam()));
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, 50s));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    ExpectReceived(sink, files);
}

INSTANTIATE_TEST_SUITE_P(Settings, GKermitPeers,
                         ::testing::Values(KermitSetting{40, 1, 3, KermitPrefixing::All},
                                           KermitSetting{94, 1, 1, KermitPrefixing::All},
                                           KermitSetting{1000, 8, 3, KermitPrefixing::Cautious},
                                           KermitSetting{9000, 1, 3, KermitPrefixing::All},
                                           KermitSetting{1000, 1, 3, KermitPrefixing::All, true}));

} // namespace qncomm::transfer::testing

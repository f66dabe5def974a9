#include "FaultCampaign.h"
#include "PeerRig.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace qncomm::testing {

using namespace transfer;

struct KermitSetting {
    std::size_t packet;
    unsigned window;
    unsigned check;
    KermitPrefixing prefixing;
    bool sevenBits = false;
};

void PrintTo(const KermitSetting& setting, std::ostream* out) {
    *out << "length " << setting.packet << ", window " << setting.window << ", check "
         << setting.check << ", prefixing " << static_cast<int>(setting.prefixing)
         << (setting.sevenBits ? ", seven bits" : "");
}

namespace {

using namespace std::chrono_literals;

std::string PrefixingOf(KermitPrefixing prefixing) {
    if (prefixing == KermitPrefixing::All) return "set prefixing all, ";
    return prefixing == KermitPrefixing::Least ? "set prefixing minimal, "
                                               : "set prefixing cautious, ";
}

std::vector<std::string> CKermit(const KermitSetting& setting, const std::string& action) {
    const std::string length = std::to_string(setting.packet);
    std::string script = "set file type binary, set transfer mode manual, set file names literal, "
                         "set file collision overwrite, set delay 0, set block-check "
                         + std::to_string(setting.check) + ", set window "
                         + std::to_string(setting.window) + ", set receive packet-length " + length
                         + ", set send packet-length " + length + ", set streaming off, "
                         + PrefixingOf(setting.prefixing)
                         + (setting.sevenBits ? "set parity space, " : "") + action + ", exit";
    return {"kermit", "-Y", "-q", "-C", script};
}

KermitOptions Options(const KermitSetting& setting) {
    KermitOptions options;
    options.packet = setting.packet;
    options.window = setting.window;
    options.check = setting.check;
    options.prefixing = setting.prefixing;
    options.sevenBits = setting.sevenBits;
    return options;
}

// What a run may take; the machine may be busy with others.
constexpr Time Limit = 300s;

// Packets of a few bytes take their time, so an ordinary run sends less in them.
std::vector<MemoryFile> FilesFor(const KermitSetting& setting) {
    std::vector<MemoryFile> files = KeptFiles();
    if (setting.packet >= 1000 || EveryCombinationIsWanted()) return files;
    for (auto& file : files)
        file.content.resize(std::min<std::size_t>(file.content.size(), 100000));
    return files;
}

constexpr std::array<std::size_t, 6> Lengths = {20, 90, 94, 95, 1000, 9000};
constexpr std::array<unsigned, 3> Windows = {1, 8, 30};
constexpr std::array<KermitPrefixing, 2> Prefixings = {KermitPrefixing::All,
                                                       KermitPrefixing::Least};
constexpr std::array<unsigned, 3> Checks = {1, 2, 3};

// Every pair of values of two settings stands in one row at least: all lengths with all windows,
// each of both with every prefixing and check.
std::vector<KermitSetting> PairwiseSettings() {
    std::vector<KermitSetting> settings;
    for (std::size_t length = 0; length < Lengths.size(); ++length) {
        for (std::size_t window = 0; window < Windows.size(); ++window) {
            settings.push_back({Lengths[length], Windows[window],
                                Checks[(length + window) % Checks.size()],
                                Prefixings[(length + window) % Prefixings.size()]});
        }
    }
    return settings;
}

std::vector<KermitSetting> EverySetting() {
    std::vector<KermitSetting> settings;
    for (const std::size_t length : Lengths)
        for (const unsigned window : Windows)
            for (const KermitPrefixing prefixing : Prefixings)
                for (const unsigned check : Checks)
                    settings.push_back({length, window, check, prefixing});
    return settings;
}

std::vector<KermitSetting> Settings() {
    auto settings = EveryCombinationIsWanted() ? EverySetting() : PairwiseSettings();
    settings.push_back({1000, 8, 3, KermitPrefixing::Cautious});
    settings.push_back({1000, 8, 3, KermitPrefixing::All, true});
    return settings;
}

// A program of short windows only: what counts are the lengths and what is prefixed.
std::vector<KermitSetting> SettingsWithoutWindow() {
    std::vector<KermitSetting> settings;
    for (const auto& setting : Settings())
        if (EveryCombinationIsWanted() || setting.window == 8) settings.push_back(setting);
    return settings;
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
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, Limit));
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
        folder.Write(file.name, file.content);
        names +=
            file.name.find(' ') == std::string::npos ? ' ' + file.name : " {" + file.name + "}";
    }
    PeerProcess peer(CKermit(GetParam(), "msend" + names), folder.Path());
    KermitReceiver receiver(Options(GetParam()));
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, Limit));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    ExpectReceived(sink, files);
}

INSTANTIATE_TEST_SUITE_P(Combinations, KermitPeers, ::testing::ValuesIn(Settings()));

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
    if (GetParam().sevenBits) command.insert(command.begin() + 1, {"-p", "s"});
    PeerProcess peer(command, folder.Path());
    KermitSender sender(Options(GetParam()));
    const auto files = FilesFor(GetParam());
    MemorySource source(files);
    EXPECT_TRUE(RunAgainst(sender, &source, nullptr, peer, Limit));
    EXPECT_EQ(sender.Outcome(), Outcome::Success) << sender.Reason();
    ExpectArrived(folder, files);
}

TEST_P(GKermitPeers, GKermitSendsWhatIsReceived) {
    if (!PeersAreInstalled({"gkermit"})) return;
    const ScratchFolder folder;
    const auto files = FilesFor(GetParam());
    std::vector<std::string> command = {"gkermit", "-q", "-i", "-P"};
    if (GetParam().sevenBits) command.insert(command.end(), {"-p", "s"});
    command.emplace_back("-s");
    for (const auto& file : files) {
        folder.Write(file.name, file.content);
        command.push_back(file.name);
    }
    PeerProcess peer(command, folder.Path());
    KermitReceiver receiver(Options(GetParam()));
    MemorySink sink;
    EXPECT_TRUE(RunAgainst(receiver, nullptr, &sink, peer, Limit));
    EXPECT_EQ(receiver.Outcome(), Outcome::Success) << receiver.Reason();
    ExpectReceived(sink, files);
}

INSTANTIATE_TEST_SUITE_P(Combinations, GKermitPeers, ::testing::ValuesIn(SettingsWithoutWindow()));

} // namespace qncomm::testing

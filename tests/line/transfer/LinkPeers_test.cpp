// The link's file transfers against other people's programs at the other end of a pseudo-terminal.

#include "PtyPair.h"
#include "platform/PollLoop.h"
#include "support/ExpectRaised.h"
#include "support/Stack.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qncomm::testing {
namespace {

/// Every byte value many times, in an order that a seed decides.
std::string Content(std::size_t size) {
    std::mt19937 source(7);
    std::string bytes(size, '\0');
    for (char& c : bytes)
        c = static_cast<char>(source());
    return bytes;
}

std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// A program whose input and output are the far side of the line, in a folder of its own.
class Peer {
  public:
    Peer(int line, const std::string& folder, std::vector<std::string> arguments) {
        ::fcntl(line, F_SETFL, ::fcntl(line, F_GETFL) & ~O_NONBLOCK);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, line, 0);
        ::posix_spawn_file_actions_adddup2(&actions, line, 1);
        ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
        std::vector<char*> words;
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        mStarted = ::posix_spawnp(&mPid, words[0], &actions, nullptr, words.data(), environ) == 0;
        ::posix_spawn_file_actions_destroy(&actions);
    }
    ~Peer() {
        if (!mStarted) return;
        ::kill(mPid, SIGKILL);
        ::waitpid(mPid, nullptr, 0);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    bool Started() const { return mStarted; }

  private:
    pid_t mPid = -1;
    bool mStarted = false;
};

class LinkPeers : public ::testing::Test {
  protected:
    LinkPeers() : mPty(OpenPty()), mStack(mLoop, mPty.path) {
        mStack.mLink.SetTerminalActive(true);
        std::filesystem::create_directory(mFolder.Path("peer"));
    }

    /// Starts a peer; when it is not installed, says so, and fails in CI.
    bool Start(const std::vector<std::string>& arguments) {
        mPeer = std::make_unique<Peer>(mPty.master.Get(), mFolder.Path("peer"), arguments);
        if (mPeer->Started()) return true;
        EXPECT_EQ(std::getenv("CI"), nullptr) << arguments[0] << " is not installed";
        std::cout << arguments[0] << " is not installed: nothing was proven here\n";
        return false;
    }

    TempFolder mFolder;
    PtyPair mPty;
    PollLoop mLoop;
    Stack mStack;
    std::unique_ptr<Peer> mPeer;
};

TEST_F(LinkPeers, SendsByZModem) {
    const std::string content = Content(200'000);
    Write(mFolder.Path("label.bin"), content);
    if (!Start({"rz", "-b", "-q"})) return;
    mStack.mLink.BinaryUpload(mFolder.Path("label.bin"), BinaryZModem);
    EXPECT_EQ(Read(mFolder.Path("peer/label.bin")), content);
    EXPECT_EQ(mStack.mMessages.back(), "Uploading label.bin");
}

TEST_F(LinkPeers, ReceivesByZModemUnderItsOwnName) {
    const std::string content = Content(200'000);
    Write(mFolder.Path("peer/remote.bin"), content);
    Write(mFolder.Path("here.bin"), "what stood here before");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    mStack.mLink.BinaryDownload(mFolder.Path("here.bin"), BinaryZModem);
    EXPECT_EQ(Read(mFolder.Path("here.bin")), content);
    EXPECT_FALSE(std::filesystem::exists(mFolder.Path("remote.bin")))
        << "the remote chooses no path";
}

TEST_F(LinkPeers, SendsByKermit) {
    const std::string content = Content(50'000);
    Write(mFolder.Path("label.bin"), content);
    if (!Start({"gkermit", "-riq"})) return;
    mStack.mLink.BinaryUpload(mFolder.Path("label.bin"), BinaryKermit);
    EXPECT_EQ(Read(mFolder.Path("peer/LABEL.BIN")) + Read(mFolder.Path("peer/label.bin")), content);
}

TEST_F(LinkPeers, ReceivesByKermit) {
    const std::string content = Content(50'000);
    Write(mFolder.Path("peer/remote.bin"), content);
    if (!Start({"gkermit", "-iqs", "remote.bin"})) return;
    mStack.mLink.BinaryDownload(mFolder.Path("here.bin"), BinaryKermit);
    EXPECT_EQ(Read(mFolder.Path("here.bin")), content);
}

TEST_F(LinkPeers, ACancelLeavesNoFileAndTheOldOneAlone) {
    Write(mFolder.Path("peer/remote.bin"), Content(5'000'000));
    Write(mFolder.Path("here.bin"), "what stood here before");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    mStack.mCancel = true;
    EXPECT_RAISED_FROM(mStack.mLink.BinaryDownload(mFolder.Path("here.bin"), BinaryZModem),
                       "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_EQ(Read(mFolder.Path("here.bin")), "what stood here before");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mFolder.Path("")), {}), 2)
        << "the folder of the peer and the old file";
}

TEST_F(LinkPeers, AVanishedLineFailsTheTransfer) {
    Write(mFolder.Path("label.bin"), Content(5'000'000));
    if (!Start({"rz", "-b", "-q"})) return;
    bool cut = false;
    const Subscription follow =
        mStack.mLink.StatusEvent.Connect([&](std::string&, std::int16_t& percent, bool&) {
            if (std::exchange(cut, true) || percent < 0) return;
            mPeer.reset();
            mPty.master.Reset();
        });
    EXPECT_RAISED(mStack.mLink.BinaryUpload(mFolder.Path("label.bin"), BinaryZModem), 1023);
    EXPECT_FALSE(mStack.mSerial.TransferReason().empty());
}

TEST_F(LinkPeers, AFolderAsTargetFails) {
    Write(mFolder.Path("peer/remote.bin"), "x");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    EXPECT_RAISED(mStack.mLink.BinaryDownload(mFolder.Path("peer"), BinaryZModem), 1022);
}

} // namespace
} // namespace qncomm::testing

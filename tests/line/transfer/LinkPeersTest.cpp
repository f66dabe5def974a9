// The link's file transfers against other people's programs at the other end of a pseudo-terminal.

#include "platform/PollLoop.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/LinePeer.h"
#include "testing/line/PtyPair.h"
#include "testing/stack/Stack.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

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

class LinkPeers : public ::testing::Test {
  protected:
    LinkPeers() : mPty(OpenPty()), mStack(mLoop, mPty.path) {
        mStack.mLink.SetTerminalActive(true);
        mFolder.MakeFolder("peer");
    }

    /// Starts a peer; when it is not installed, says so, and fails in CI.
    bool Start(const std::vector<std::string>& arguments) {
        mPeer = LinePeer::Start(mPty.master.Get(), mFolder.File("peer"), arguments);
        return mPeer != nullptr;
    }

    ScratchFolder mFolder;
    PtyPair mPty;
    PollLoop mLoop;
    Stack mStack;
    std::unique_ptr<LinePeer> mPeer;
};

TEST_F(LinkPeers, SendsByZModem) {
    const std::string content = Content(200'000);
    mFolder.Write("label.bin", content);
    if (!Start({"rz", "-b", "-q"})) return;
    mStack.mLink.BinaryUpload(mFolder.File("label.bin"), BinaryZModem);
    EXPECT_EQ(mFolder.Read("peer/label.bin"), content);
    EXPECT_EQ(mStack.mMessages.back(), "Uploading label.bin");
}

TEST_F(LinkPeers, ReceivesByZModemUnderItsOwnName) {
    const std::string content = Content(200'000);
    mFolder.Write("peer/remote.bin", content);
    mFolder.Write("here.bin", "what stood here before");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    mStack.mLink.BinaryDownload(mFolder.File("here.bin"), BinaryZModem);
    EXPECT_EQ(mFolder.Read("here.bin"), content);
    EXPECT_FALSE(mFolder.Has("remote.bin")) << "the remote chooses no path";
}

TEST_F(LinkPeers, SendsByKermit) {
    const std::string content = Content(50'000);
    mFolder.Write("label.bin", content);
    if (!Start({"gkermit", "-riq"})) return;
    mStack.mLink.BinaryUpload(mFolder.File("label.bin"), BinaryKermit);
    EXPECT_EQ(mFolder.Read("peer/LABEL.BIN") + mFolder.Read("peer/label.bin"), content);
}

TEST_F(LinkPeers, ReceivesByKermit) {
    const std::string content = Content(50'000);
    mFolder.Write("peer/remote.bin", content);
    if (!Start({"gkermit", "-iqs", "remote.bin"})) return;
    mStack.mLink.BinaryDownload(mFolder.File("here.bin"), BinaryKermit);
    EXPECT_EQ(mFolder.Read("here.bin"), content);
}

TEST_F(LinkPeers, ACancelLeavesNoFileAndTheOldOneAlone) {
    mFolder.Write("peer/remote.bin", Content(5'000'000));
    mFolder.Write("here.bin", "what stood here before");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    mStack.mCancel = true;
    EXPECT_RAISED_FROM(mStack.mLink.BinaryDownload(mFolder.File("here.bin"), BinaryZModem),
                       "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_EQ(mFolder.Read("here.bin"), "what stood here before");
    EXPECT_EQ(mFolder.Count(), 2U) << "the folder of the peer and the old file";
}

TEST_F(LinkPeers, AVanishedLineFailsTheTransfer) {
    mFolder.Write("label.bin", Content(5'000'000));
    if (!Start({"rz", "-b", "-q"})) return;
    bool cut = false;
    const Subscription follow =
        mStack.mLink.StatusEvent.Connect([&](std::string&, std::int16_t& percent, bool&) {
            if (std::exchange(cut, true) || percent < 0) return;
            mPeer.reset();
            mPty.master.Reset();
        });
    EXPECT_RAISED(mStack.mLink.BinaryUpload(mFolder.File("label.bin"), BinaryZModem), 1023);
    EXPECT_FALSE(mStack.mSerial.TransferReason().empty());
}

TEST_F(LinkPeers, AFolderAsTargetFails) {
    mFolder.Write("peer/remote.bin", "x");
    if (!Start({"sz", "-b", "-q", "remote.bin"})) return;
    EXPECT_RAISED(mStack.mLink.BinaryDownload(mFolder.File("peer"), BinaryZModem), 1022);
}

} // namespace
} // namespace qncomm::testing

// Reaching a remote serial port beside other work: a name, a connection and the server's answers
// are awaited by whoever yields, and by nobody else.
#include "RemoteServer.h"
#include "Rfc2217Channel.h"
#include "platform/PollLoop.h"
#include "testing/line/FloodingServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

constexpr LineSettings Settings{57600, 'e', 7, 2, false, true};
constexpr LineSettings OtherSettings{1200, 'n', 8, 1, false, false};
constexpr std::int32_t LongestTurnMs = 60'000; // that only a hang reaches

class Reaching : public ::testing::Test {
  protected:
    void To(const std::string& service) {
        mChannel = std::make_unique<Rfc2217Channel>(mLoop, "localhost", service);
    }
    /// The turns of the loop until the port is reached.
    int Reach(const LineSettings& settings) {
        int turns = 0;
        for (; !mChannel->Reach(settings) && turns < 10'000; ++turns)
            mLoop.Yield(LongestTurnMs);
        return turns;
    }
    /// The same without a turn: what is not reached yet is not awaited.
    IoResult OpenNow(const LineSettings& settings) {
        EXPECT_TRUE(mChannel->Reach(settings));
        return mChannel->Open(settings);
    }

    PollLoop mLoop;
    std::unique_ptr<Rfc2217Channel> mChannel;
};

TEST_F(Reaching, EndsWithAPortThatIsReady) {
    const RemoteServer server;
    To(server.Service());
    EXPECT_GT(Reach(Settings), 0);
    EXPECT_EQ(server.Format(), "57600,e,7,2");
    EXPECT_TRUE(OpenNow(Settings).Ok());
    EXPECT_EQ(mChannel->Dsr(), true);
    EXPECT_EQ(server.Connections(), 1);
}

TEST_F(Reaching, WithOtherSettingsTalksAboutThemOnTheSameConnection) {
    const RemoteServer server;
    To(server.Service());
    Reach(Settings);
    Reach(OtherSettings);
    EXPECT_EQ(server.Format(), "1200,n,8,1");
    EXPECT_TRUE(mChannel->Open(Settings).Ok());
    EXPECT_EQ(server.Format(), "57600,e,7,2");
    EXPECT_EQ(server.Connections(), 1);
}

TEST_F(Reaching, MakesAnewWhatHasEndedWhileItWasParked) {
    RemoteServer server;
    To(server.Service());
    ASSERT_TRUE(mChannel->Open(Settings).Ok());
    mChannel->Close();
    server.HangUp();
    Reach(Settings);
    EXPECT_TRUE(OpenNow(Settings).Ok());
    EXPECT_EQ(server.Connections(), 2);
}

TEST_F(Reaching, FailsAsOpeningDoes) {
    const RemoteServer server;
    To(server.Service());
    Reach({250, 'n', 8, 1, false, false});
    EXPECT_THAT(OpenNow({250, 'n', 8, 1, false, false}).text, HasSubstr("does not take 250 baud"));
    EXPECT_TRUE(mChannel->Open(Settings).Ok()) << "the failure is told once";
}

TEST_F(Reaching, IsLetGoOfWhenNobodyOpens) {
    const RemoteServer server;
    To(server.Service());
    Reach(Settings);
    EXPECT_FALSE(server.HostIsGone());
    while (!server.HostIsGone())
        mLoop.Yield(100); // ends with the channel's own alarm
}

TEST_F(Reaching, AServerThatSaysNothingEndsInItsTimeAndKeepsNoYieldWaiting) {
    const FloodingServer server("");
    To(server.Service());
    int ticks = 0;
    const auto timer = mLoop.StartTimer(100, [&] { ++ticks; });
    const std::int64_t begun = mLoop.NowMs();
    Reach(Settings);
    EXPECT_LE(mLoop.NowMs() - begun, 6000);
    EXPECT_GT(ticks, 20) << "the timer has run meanwhile";
    EXPECT_THAT(OpenNow(Settings).text, HasSubstr("says nothing"));
}

TEST_F(Reaching, AHostThatIsNotKnownIsAFailure) {
    mChannel = std::make_unique<Rfc2217Channel>(mLoop, "printer.invalid", "4000");
    Reach(Settings);
    EXPECT_FALSE(OpenNow(Settings).Ok());
}

} // namespace
} // namespace qncomm::testing

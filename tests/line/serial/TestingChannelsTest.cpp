// The channels that a host's own tests stand on.

#include "common/QNError.h"
#include "serial/PDQComm.h"
#include "serial_testing/EchoChannel.h"
#include "testing/stack/ManualReactor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

class TestingChannels : public ::testing::Test {
  protected:
    void Open(ChannelFactory factory) {
        PortBindings bindings;
        EXPECT_EQ(bindings.Give(1, "/dev/stand-in"), "");
        mPort =
            std::make_unique<PDQComm>(mReactor, std::move(bindings), nullptr, std::move(factory));
        mPort->SetPortOpen(true);
    }
    /// What comes until the line is quiet for half a second.
    std::string Heard() {
        std::string text;
        while (mPort->WaitForReceive(500))
            text += mPort->Read();
        return text;
    }
    std::string Ask(std::string_view text) {
        mPort->Write(text);
        return Heard();
    }

    ManualReactor mReactor;
    ScriptedLine mLine;
    std::unique_ptr<PDQComm> mPort;
};

TEST_F(TestingChannels, AnEchoGivesBackWhatItTook) {
    Open(EchoChannels(mLine));
    EXPECT_EQ(Ask(std::string("PRINT\r\n\0\x1A\xFF", 10)), std::string("PRINT\r\n\0\x1A\xFF", 10));
    mLine.takes = 3;
    EXPECT_EQ(Ask("PRINT"), "PRI");
}

TEST_F(TestingChannels, AScriptAnswersWhatItExpects) {
    mLine.script = {{"PRINT 6*7\r\n", "PRINT 6*7\r\n42\r\nOk\r\n"},
                    {"FILES\r\n", "Ok\r\n", 400'000}};
    Open(ScriptedChannels(mLine));
    mPort->Write("PRINT ");
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(Ask("6*7\r\n"), "PRINT 6*7\r\n42\r\nOk\r\n");
    EXPECT_FALSE(mLine.Played());
    const std::int64_t asked = mReactor.NowUs();
    mPort->Write("FILES\r\n");
    EXPECT_TRUE(mPort->WaitForReceive(500));
    EXPECT_EQ(mReactor.NowUs() - asked, 400'000);
    EXPECT_TRUE(mLine.Played());
}

TEST_F(TestingChannels, AScriptSpeaksByItself) {
    mLine.script = {{"", "Ready\r\n"}, {"A", "B"}, {"", "C", 100'000}};
    Open(ScriptedChannels(mLine));
    EXPECT_EQ(Heard(), "Ready\r\n");
    EXPECT_EQ(Ask("A"), "BC");
    EXPECT_TRUE(mLine.Played());
}

TEST_F(TestingChannels, AHostOffTheScriptLosesTheLineAndHearsWhy) {
    mLine.script = {{"PRINT 6*7\r\n", "42\r\n"}};
    Open(ScriptedChannels(mLine));
    mPort->Write("PRINT 6*8\r\n");
    EXPECT_FALSE(mLine.Played());
    mReactor.Yield(1);
    EXPECT_FALSE(mPort->PortOpen());
    ASSERT_TRUE(mPort->LastFailure());
    EXPECT_THAT(mPort->LastFailure()->description,
                HasSubstr("the host sent \"PRINT 6*8\r\n\", the script expects \"PRINT 6*7\r\n\""));
}

TEST_F(TestingChannels, AHostThatGoesOnAfterTheScriptLosesTheLine) {
    mLine.script = {{"A", "B"}};
    Open(ScriptedChannels(mLine));
    EXPECT_EQ(Ask("A"), "B");
    EXPECT_TRUE(mLine.Played());
    mPort->Write("A");
    ASSERT_TRUE(mLine.loss);
    EXPECT_THAT(mLine.loss->text, HasSubstr("expects nothing more"));
}

TEST_F(TestingChannels, EachFailureHasASwitch) {
    Open(EchoChannels(mLine));
    EXPECT_TRUE(mPort->SetBreak(true).Ok());
    EXPECT_TRUE(mLine.breaking);
    mLine.breakResult = {IoStatus::Unsupported, 0, "there is no line that could break"};
    EXPECT_EQ(mPort->SetBreak(false).status, IoStatus::Unsupported);
    EXPECT_TRUE(mPort->DSRState()) << "without modem lines it reads as held";
    mLine.dsr = false;
    EXPECT_FALSE(mPort->DSRState());
    mLine.probeResult = {IoStatus::Busy, 0, "held by another program"};
    EXPECT_FALSE(mPort->ProbePort(1));
    mLine.configureResult = {IoStatus::Failed, 0, "the device takes no such rate"};
    EXPECT_THROW(mPort->SetPortSettings("300,N,8,1"), QNError);
    EXPECT_EQ(mLine.settings.size(), 1U);
    mPort->SetPortOpen(false);
    EXPECT_FALSE(mLine.breaking);
    mLine.openResult = {IoStatus::Missing, 0, "there is no such device"};
    EXPECT_THROW(mPort->SetPortOpen(true), QNError);
}

} // namespace
} // namespace qncomm::testing

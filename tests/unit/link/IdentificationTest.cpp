#include "LinkFixture.h"

namespace qncomm::testing {
namespace {

class Identification : public LinkFixture {
  protected:
    void Answer(const Lines& lines) {
        mLink.SetImmediateMode(true);
        mSerial.Handshake();
        mSerial.Exchange("PRINT VERSION$(0):PRINT VERSION$(1)", lines);
    }
};

TEST_F(Identification, AsksOnceAndKeepsBothTexts) {
    Answer({"Quorin  10.04   build 7 ", " R7G"});
    EXPECT_EQ(mLink.ModelText(), "R7G");
    EXPECT_EQ(mLink.VersionText(), "Quorin 10.04 build 7");
    EXPECT_EQ(mLink.ModelText(), "R7G");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Identification, DroppingImmediateModeAsksAgain) {
    Answer({"1.0", "R7A"});
    EXPECT_EQ(mLink.ModelText(), "R7A");
    mLink.SetImmediateMode(false);
    Answer({"2.0", "R7B"});
    EXPECT_EQ(mLink.ModelText(), "R7B");
}

TEST_F(Identification, TheAlternativeCommandModeIsMarkedOnItsModelOnly) {
    struct Case {
        const char* version;
        const char* model;
        const char* text;
    };
    for (const Case& c :
         {Case{"V1.0", "R7C", "Tavrel Protocol V1.0"}, Case{"v1.0", "R7C", "Tavrel Protocol v1.0"},
          Case{"v1.0", "R7C rev 2", "Tavrel Protocol v1.0"}, Case{"1.0", "R7C", "1.0"},
          Case{"V1.0", "R7D", "V1.0"}}) {
        Answer({c.version, c.model});
        EXPECT_EQ(mLink.VersionText(), c.text) << c.model;
        mLink.SetImmediateMode(false);
    }
}

TEST_F(Identification, ARefusedPortAnswersEmptyTextsWithoutAnError) {
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    EXPECT_EQ(mLink.ModelText(), "");
    EXPECT_EQ(mLink.VersionText(), "");
}

class MalformedVersion : public LinkFixture, public ::testing::WithParamInterface<const char*> {};

TEST_P(MalformedVersion, RaisesAndDropsImmediateMode) {
    mLink.SetImmediateMode(true);
    mSerial.Handshake();
    mSerial.Expect("PRINT VERSION$(0):PRINT VERSION$(1)\r\n").Reply(GetParam());
    bool immediateWhenRaised = true;
    try {
        mLink.ModelText();
        ADD_FAILURE() << "nothing was raised";
    } catch (const QNError& error) {
        immediateWhenRaised = mLink.ImmediateMode();
        EXPECT_EQ(error.Number(), 1000);
        EXPECT_EQ(error.Source(), "Datalink:GetVersion");
    }
    EXPECT_FALSE(immediateWhenRaised);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

INSTANTIATE_TEST_SUITE_P(Replies, MalformedVersion,
                         ::testing::Values("echo\r\n1.0\r\nOk\r\n",
                                           "echo\r\n1.0\r\nR7A\r\nmore\r\nOk\r\n",
                                           "echo\r\n1.0\r\nR7A\r\nnotOk\r\n", "Ok\r\n"));

TEST_F(Identification, TheChannelReadsAs1UntilFound) {
    EXPECT_EQ(mLink.Stdio(), 1);
}

} // namespace
} // namespace qncomm::testing

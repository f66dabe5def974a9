#include "LinkFixture.h"

namespace qncomm::testing {
namespace {

constexpr const char* Asked = "IMMEDIATE ON:SYSVAR(18)=-1:SYSVAR(19)=2:PRINT 7919*2\r\n";
constexpr const char* Answered =
    "IMMEDIATE ON:SYSVAR(18)=-1:SYSVAR(19)=2:PRINT 7919*2\r\n15838\r\nOk\r\n";

class ProgramStop : public LinkFixture {
  protected:
    /// The program says that many more lines, one each 100 ms.
    void Talk(int lines) {
        for (int i = 1; i <= lines; ++i)
            mSerial.Arrive("42\r\n", i * 100);
    }

    Lines Breaks() const {
        Lines breaks;
        for (const std::string& entry : mSerial.mLog)
            if (entry.starts_with("Break")) breaks.push_back(entry);
        return breaks;
    }
};

TEST_F(ProgramStop, CtrlCEndsAProgramAndOneExchangeProvesThePrompt) {
    mSerial.Expect("\x03").Reply("42\r\nBreak in line 10\r\nOk\r\n", 20);
    mSerial.Expect(Asked).Reply(Answered, 5);
    EXPECT_EQ(mLink.StopProgram(), StopByCtrlC);
    EXPECT_THAT(Breaks(), IsEmpty());
    EXPECT_TRUE(mSerial.ScriptDone());
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(ProgramStop, APrinterAtItsPromptIsLeftThere) {
    mSerial.Expect("\x03");
    mSerial.Expect(Asked).Reply(Answered, 5);
    EXPECT_EQ(mLink.StopProgram(), StopNothingRan);
}

TEST_F(ProgramStop, NothingIsTypedIntoAProgramThatTalksOnAndABreakEndsIt) {
    Talk(24);
    mSerial.Expect("\x03");
    mSerial.mOnBreak = [this](bool on) {
        EXPECT_EQ(mSerial.mSent, "\x03");
        if (!on) mSerial.Arrive("Break in line 10\r\nOk\r\n", 120);
    };
    mSerial.Expect(Asked).Reply(Answered, 5);
    EXPECT_EQ(mLink.StopProgram(), StopByBreak);
    EXPECT_THAT(Breaks(), ElementsAre("Break on", "Break off"));
}

TEST_F(ProgramStop, APrinterThatNeverAnswersRaises1008AndThePortIsGivenBack) {
    mSerial.Expect("\x03");
    mSerial.Expect(Asked);
    mSerial.Expect(Asked);
    EXPECT_RAISED_FROM(mLink.StopProgram(), "1008 Datalink:StopProgram");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(ProgramStop, ALineWithoutABreakHasCtrlCAlone) {
    mSerial.mOnBreak = [](bool) { throw QNError(SerialErrDevice, "PDQComm", "no line"); };
    mSerial.Expect("\x03");
    mSerial.Expect(Asked);
    EXPECT_RAISED_FROM(mLink.StopProgram(), "1008 Datalink:StopProgram");
}

TEST_F(ProgramStop, APortInUseIsRefusedWithNothingSent) {
    mSerial.SetTag("EXCLUSIVE_USE");
    EXPECT_EQ(mLink.StopProgram(), StopRefused);
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(ProgramStop, ABreakLastsAsLongAsStated) {
    mSerial.SetPortOpen(true);
    const std::int64_t start = mLoop.NowMs();
    std::int64_t ended = 0;
    mSerial.mOnBreak = [&](bool on) {
        if (!on) ended = mLoop.NowMs();
    };
    mLink.SendBreak(250);
    EXPECT_EQ(ended - start, 251); // no less than stated, on a clock of whole ms
    EXPECT_THAT(Breaks(), ElementsAre("Break on", "Break off"));
}

TEST_F(ProgramStop, ABreakEndsAlsoWhenAnErrorComes) {
    mSerial.SetPortOpen(true);
    const auto timer = mLoop.StartTimer(100, [] { throw QNError(5, "host", "stop"); });
    EXPECT_RAISED_FROM(mLink.SendBreak(250), "5 host");
    EXPECT_THAT(Breaks(), ElementsAre("Break on", "Break off"));
}

TEST_F(ProgramStop, AClosedPortTakesNeitherBreakNorCtrlC) {
    EXPECT_RAISED_FROM(mLink.SendBreak(), "1024 Datalink:SendBreak");
    EXPECT_RAISED_FROM(mLink.SendCtrlC(), "1024 Datalink:SendCtrlC");
    EXPECT_THAT(Breaks(), IsEmpty());
}

TEST_F(ProgramStop, CtrlCIsOneByteAndNoCommand) {
    const PortClaim claim = Claim();
    mSerial.Expect("\x03").Reply("Break\r\nOk\r\n");
    mLink.SendCtrlC();
    Lines lines;
    mSerial.Exchange("FRE", {"7"});
    mLink.OutputText("FRE\r\n");
    mLink.InputText(lines);
    EXPECT_THAT(lines, ElementsAre("FRE", "7", "Ok"));
}

} // namespace
} // namespace qncomm::testing

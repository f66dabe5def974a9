#include "LinkFixture.h"
#include "platform/SystemFiles.h"

namespace qncomm::testing {
namespace {

/// The terminal shows what the receive path delivers, so its text tells what the path did.
class ReceivePath : public LinkFixture {
  protected:
    ReceivePath() { mLink.SetTerminalActive(true); }

    std::string Delivered(const std::vector<std::pair<std::string, int>>& arrivals) {
        mSerial.mTerminalText.clear();
        int last = 0;
        for (const auto& [bytes, delay] : arrivals)
            mSerial.Arrive(bytes, last += delay);
        const std::int64_t end = mLoop.NowMs() + last + 200;
        while (mLoop.NowMs() < end)
            mLoop.Yield(static_cast<std::int32_t>(end - mLoop.NowMs()));
        return mSerial.mTerminalText;
    }
};

TEST_F(ReceivePath, AllLineEndsArriveAsCrLf) {
    EXPECT_EQ(Delivered({{"a\rb", 1}}), "a\r\nb");
    EXPECT_EQ(Delivered({{"a\nb", 1}}), "a\r\nb");
    EXPECT_EQ(Delivered({{"a\r\nb", 1}}), "a\r\nb");
    EXPECT_EQ(Delivered({{"a\r", 1}}), "a\r\n");
}

TEST_F(ReceivePath, LineFeedPairsAreOneLineEndAndCrLfPairsTwo) {
    EXPECT_EQ(Delivered({{"a\n\nb", 1}}), "a\r\nb");
    EXPECT_EQ(Delivered({{"a\r\n\r\nb", 1}}), "a\r\n\r\nb");
}

TEST_F(ReceivePath, APairSplitWithin50MsIsNotTakenApart) {
    EXPECT_EQ(Delivered({{"a\r", 1}, {"\nb", 49}}), "a\r\nb");
}

TEST_F(ReceivePath, APairSplitForLongerIsStillOneLineEnd) {
    EXPECT_EQ(Delivered({{"a\r", 1}, {"\nb", 120}}), "a\r\nb");
    EXPECT_EQ(Delivered({{"a\r", 1}, {"b\n", 120}}), "a\r\nb\r\n");
}

TEST_F(ReceivePath, EveryCutOfATextDeliversTheSame) {
    const std::string text = "one\r\ntwo\r\n\r\nthree\r\n";
    for (std::size_t cut = 0; cut <= text.size(); ++cut)
        EXPECT_EQ(Delivered({{text.substr(0, cut), 1}, {text.substr(cut), 30}}), text)
            << "cut at " << cut;
}

TEST_F(ReceivePath, CarriageReturnsWithoutEndDoNotHoldTheLoop) {
    for (int i = 0; i < 100; ++i)
        mSerial.Arrive("\r", 10 * i);
    mLoop.Yield(1);
    const std::int64_t start = mLoop.NowMs();
    mLoop.Yield(1);
    EXPECT_LE(mLoop.NowMs() - start, 60);
}

TEST_F(ReceivePath, TheTerminalsTextNeverReachesTheReceiveBuffer) {
    Delivered({{"Ok\r\n", 1}});
    Lines lines;
    EXPECT_RAISED(mLink.InputText(lines, true, 10), 1008);
}

TEST_F(ReceivePath, LineErrorsNeedNoAction) {
    // The scripted control fires only what arrives; the codes are given to a link's sink directly.
    struct EventSource : ScriptedSerial {
        using ScriptedSerial::ScriptedSerial;
        void SetEventSink(EventSink sink) override { mSink = std::move(sink); }
        EventSink mSink;
    } source(mLoop);
    clsDataLink link(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()});
    link.SetSerialPort(&source);
    source.mLog.clear();
    for (const auto event : {SerialEventSend, SerialEventFrame, SerialEventOverrun,
                             SerialEventReceiveOverflow, SerialEventParity})
        source.mSink(event);
    EXPECT_THAT(source.mLog, IsEmpty());
    EXPECT_EQ(source.mTerminalText, "");
}

} // namespace
} // namespace qncomm::testing

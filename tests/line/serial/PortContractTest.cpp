// What holds for a port whatever is behind it: one suite over every kind of line.

#include "common/QNError.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"
#include "testing/line/Endpoint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

std::string EveryByte() {
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

/// Bytes of which each position can be told from its neighbours.
std::string LongText(std::size_t length) {
    std::string text;
    for (std::size_t number = 0; text.size() < length; ++number)
        text += std::to_string(number) + ";";
    text.resize(length);
    return text;
}

class PortContract : public ::testing::TestWithParam<EndpointKind> {
  protected:
    PortContract() {
        EXPECT_EQ(mPort.Bindings().Give(1, mFar->Address()), "");
        mPort.SetPortNumber(1);
    }

    void Open() {
        mPort.SetPortOpen(true);
        mFar->Pump();
    }
    void Watch() {
        mPort.SetReceiveThreshold(1);
        mPort.SetEventSink([this](SerialEvent event) {
            mEvents.push_back(event);
            mText += mPort.Read();
        });
    }
    bool Wait(const std::function<bool()>& condition) {
        return Until(mLoop, mFar.get(), condition);
    }
    std::string ReadAll(std::size_t length) {
        std::string text;
        EXPECT_TRUE(Wait([&] {
            text += mPort.Read();
            return text.size() >= length;
        }));
        return text;
    }

    PollLoop mLoop;
    std::unique_ptr<Endpoint> mFar = GetParam().make();
    PDQComm mPort{mLoop, {}, nullptr, mFar->Factory()};
    std::vector<SerialEvent> mEvents;
    std::string mText;
};

TEST_P(PortContract, EveryByteValuePassesUnchangedInBothDirections) {
    Open();
    mPort.Write(EveryByte());
    EXPECT_TRUE(Wait([&] { return mFar->Taken().size() >= 256; }));
    EXPECT_EQ(mFar->Taken(), EveryByte());
    mFar->Send(EveryByte());
    EXPECT_EQ(ReadAll(256), EveryByte());
}

TEST_P(PortContract, TheSinkIsCalledOnlyWhileTheLoopRuns) {
    Open();
    Watch();
    mFar->Send("hello");
    EXPECT_TRUE(mPort.WaitForReceive(5000));
    EXPECT_GT(mPort.ReceiveCount(), 0);
    EXPECT_TRUE(mEvents.empty());
    EXPECT_TRUE(Wait([&] { return mText == "hello"; }));
    EXPECT_THAT(mEvents, Contains(SerialEventReceive));
    EXPECT_EQ(mPort.ReceiveCount(), 0);
}

TEST_P(PortContract, WithTheThresholdAtZeroBytesWaitWithoutAnEvent) {
    Open();
    Watch();
    mPort.SetReceiveThreshold(0);
    mFar->Send("quiet");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 5; }));
    EXPECT_TRUE(mEvents.empty());
    mPort.SetReceiveThreshold(1);
    EXPECT_TRUE(Wait([&] { return mText == "quiet"; }));
}

TEST_P(PortContract, ASinkThatComesLateHearsOfWaitingBytes) {
    Open();
    mPort.SetReceiveThreshold(1);
    mFar->Send("waiting");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 7; }));
    Watch();
    EXPECT_TRUE(Wait([&] { return mText == "waiting"; }));
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
}

TEST_P(PortContract, ALineReadsTheSameHoweverItsBytesAreCut) {
    const std::string text = "PRINT 1\r\nlone\rlast\n";
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        Open();
        mFar->Send(text.substr(0, cut));
        std::vector<std::string> lines;
        // The second piece is on its way while the first is being read.
        const auto rest = mLoop.CreateAlarm([&] { mFar->Send(text.substr(cut)); });
        rest->SetDue(mLoop.NowUs());
        mLoop.Yield(0);
        for (int line = 0; line < 3; ++line)
            lines.push_back(mPort.ReadLine(5000));
        EXPECT_THAT(lines, ElementsAre("PRINT 1", "lone", "last")) << "cut at " << cut;
        mPort.SetPortOpen(false);
    }
}

TEST_P(PortContract, ALineThatDoesNotEndGivesWhatHasCome) {
    Open();
    mFar->Send("half a li");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 9; }));
    EXPECT_EQ(mPort.ReadLine(1), "half a li");
    EXPECT_EQ(mPort.ReadLine(1), "");
    EXPECT_FALSE(mPort.WaitForReceive(1));
}

TEST_P(PortContract, AFlushThrowsAwayWhatWaits) {
    Open();
    mFar->Send("old");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 3; }));
    mFar->Send("older");
    mPort.FlushReceive();
    EXPECT_EQ(mPort.ReceiveCount(), 0);
    mFar->Send("new");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() >= 3; }));
    EXPECT_TRUE(mPort.Read().ends_with("new"));
}

TEST_P(PortContract, MoreThanTheReceiveBufferHoldsArrivesWholeAndInOrder) {
    Open();
    const std::string text = LongText(20'000);
    mFar->Send(text);
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 4096; }));
    for (int pause = 0; pause < 5; ++pause) {
        mFar->Pump();
        mLoop.Yield(0);
    }
    EXPECT_EQ(mPort.ReceiveCount(), 4096);
    EXPECT_EQ(ReadAll(text.size()), text);
}

TEST_P(PortContract, WhatTheLineDoesNotTakeAtOnceIsSentInOrder) {
    Open();
    mFar->deaf = true;
    mFar->Pump();
    const std::string text = LongText(100'000);
    std::string_view left = text;
    EXPECT_TRUE(Wait([&] {
        const std::int32_t space = mPort.TransmitBufferSize() - mPort.TransmitCount();
        const std::string_view piece = left.substr(0, static_cast<std::size_t>(space));
        mPort.Write(piece);
        left.remove_prefix(piece.size());
        if (space == 0) mFar->deaf = false;
        return left.empty();
    }));
    mFar->deaf = false;
    EXPECT_TRUE(Wait([&] { return mPort.TransmitCount() == 0; }));
    EXPECT_TRUE(Wait([&] { return mFar->Taken().size() >= text.size(); }));
    EXPECT_EQ(mFar->Taken(), text);
}

TEST_P(PortContract, ClosingDropsWhatWasNotSentAndWhatWasNotRead) {
    Open();
    mFar->deaf = true;
    mFar->Pump();
    mFar->Send("unread");
    EXPECT_TRUE(Wait([&] { return mPort.ReceiveCount() == 6; }));
    mPort.Write(LongText(4096));
    mPort.SetPortOpen(false);
    EXPECT_EQ(mPort.TransmitCount(), 0);
    EXPECT_EQ(mPort.ReceiveCount(), 0);
    Open();
    EXPECT_EQ(mPort.TransmitCount(), 0);
    EXPECT_EQ(mPort.ReceiveCount(), 0);
}

TEST_P(PortContract, AClosedPortReadsAsEmptyAndTakesNothing) {
    mPort.Write("nobody");
    EXPECT_EQ(mPort.TransmitCount(), 0);
    EXPECT_EQ(mPort.Read(), "");
    EXPECT_EQ(mPort.ReadLine(1000), "");
    EXPECT_FALSE(mPort.WaitForReceive(1000));
    EXPECT_FALSE(mPort.DSRState());
    EXPECT_EQ(mPort.TypeKeys("x"), 0U);
    mPort.SetPortOpen(false);
    EXPECT_FALSE(mPort.PortOpen());
}

TEST_P(PortContract, WithoutModemLinesDsrReadsAsHeld) {
    Open();
    EXPECT_TRUE(mPort.DSRState());
}

TEST_P(PortContract, EverySettingOfTheSearchIsAccepted) {
    Open();
    for (const char* format : {"m,8,2", "n,8,2", "n,7,2", "n,7,1", "E,7,1", "o,8,1", "S,8,1"}) {
        for (const int baud : BaudRates) {
            const std::string text = std::to_string(baud) + "," + format;
            mPort.SetPortSettings(text);
            EXPECT_EQ(mPort.PortSettings(), text);
        }
    }
    mPort.SetPortSettings("115200,N,8,1");
    mFar->Send("still here");
    EXPECT_EQ(ReadAll(10), "still here");
}

TEST_P(PortContract, APortThatIsFreeProbesAsValidAndStaysClosed) {
    EXPECT_TRUE(mPort.ProbePort(1));
    EXPECT_FALSE(mPort.PortOpen());
    EXPECT_FALSE(mPort.ProbePort(2));
    Open();
    EXPECT_TRUE(mPort.ProbePort(1));
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_P(PortContract, ALineThatGoesAwayClosesThePortAndSaysSoOnce) {
    Open();
    Watch();
    mFar->Send("last words");
    EXPECT_TRUE(Wait([&] { return mText == "last words"; }));
    mFar->Unplug();
    EXPECT_TRUE(Wait([&] { return !mPort.PortOpen(); }));
    EXPECT_EQ(mEvents.back(), SerialEventPortLost);
    EXPECT_EQ(std::count(mEvents.begin(), mEvents.end(), SerialEventPortLost), 1);
    ASSERT_TRUE(mPort.LastFailure());
    EXPECT_EQ(mPort.LastFailure()->reason.status, IoStatus::Lost);
    EXPECT_NE(mPort.LastFailure()->description.find(mFar->Address()), std::string::npos);
    EXPECT_THROW(mPort.SetPortOpen(true), QNError);
    EXPECT_FALSE(mPort.PortOpen());
}

TEST_P(PortContract, ALineThatIsBackOpensAgain) {
    Open();
    mFar->Unplug();
    EXPECT_TRUE(Wait([&] { return !mPort.PortOpen(); }));
    mFar->PlugIn();
    Open();
    EXPECT_FALSE(mPort.LastFailure());
    mFar->Send("back");
    EXPECT_EQ(ReadAll(4), "back");
}

TEST_P(PortContract, ALossNoticedWhileWritingIsReportedByTheNextYield) {
    Open();
    Watch();
    mFar->Unplug();
    for (int attempt = 0; attempt < 1000 && mPort.PortOpen(); ++attempt)
        mPort.Write("x");
    EXPECT_FALSE(mPort.PortOpen());
    EXPECT_THAT(mEvents, Not(Contains(SerialEventPortLost)));
    mLoop.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventPortLost));
}

TEST_P(PortContract, ASinkMayCloseThePort) {
    Open();
    mPort.SetReceiveThreshold(1);
    mPort.SetEventSink([this](SerialEvent event) {
        mEvents.push_back(event);
        mPort.SetPortOpen(false);
        mPort.SetEventSink({});
    });
    mFar->Send("stop");
    EXPECT_TRUE(Wait([&] { return !mEvents.empty(); }));
    EXPECT_FALSE(mPort.PortOpen());
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
}

INSTANTIATE_TEST_SUITE_P(Lines, PortContract,
                         ::testing::Values(EndpointKind{"fake", MakeFakeEndpoint},
                                           EndpointKind{"pty", MakePtyEndpoint},
                                           EndpointKind{"tcp", MakeTcpEndpoint}),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace qncomm::testing

// The serial control over a line of which every failure can be switched on, on a driven clock.

#include "FakeChannel.h"
#include "common/QNError.h"
#include "serial/PDQComm.h"
#include "support/ManualReactor.h"
#include "support/ScratchFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class RecordingTrace final : public TraceSink {
  public:
    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override {
        constexpr std::array names{"tx ", "rx ", "event "};
        lastMs = lMs;
        lines.push_back(names.at(static_cast<std::size_t>(kind)) + std::string(sBytes));
    }

    std::vector<std::string> lines;
    std::int64_t lastMs = 0;
};

class SerialControlTest : public ::testing::Test {
  protected:
    SerialControlTest() {
        EXPECT_EQ(mPort.Bindings().Give(3, "/dev/fake"), "");
        mPort.SetPortNumber(3);
        mPort.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    }

    FakeChannel& Open() {
        mPort.SetPortOpen(true);
        return *mChannel;
    }
    std::int64_t MsFor(const std::function<void()>& action) {
        const std::int64_t start = mReactor.NowUs();
        action();
        return (mReactor.NowUs() - start) / 1000;
    }
    QNError ErrorOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const QNError& error) {
            return error;
        }
        ADD_FAILURE() << "nothing was raised";
        return {0, "", ""};
    }
    QNError OpenError(IoResult result) {
        mLine.openResult = std::move(result);
        return ErrorOf([this] { mPort.SetPortOpen(true); });
    }

    ManualReactor mReactor;
    FakeLine mLine;
    FakeChannel* mChannel = nullptr;
    RecordingTrace mTrace;
    PDQComm mPort{mReactor, PortBindings(), &mTrace, [this](const PortAddress&, Reactor& reactor) {
                      auto channel = std::make_unique<FakeChannel>(reactor, mLine);
                      mChannel = channel.get();
                      return channel;
                  }};
    std::vector<SerialEvent> mEvents;
};

TEST_F(SerialControlTest, AnEventWaitsForTheThreshold) {
    mPort.SetReceiveThreshold(4);
    FakeChannel& far = Open();
    far.Arrive("abc");
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, IsEmpty());
    far.Arrive("d");
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
    EXPECT_EQ(mPort.Read(), "abcd");
}

TEST_F(SerialControlTest, EachKindOfLineErrorHasItsEvent) {
    mPort.SetReceiveThreshold(0);
    FakeChannel& far = Open();
    mTrace.lines.clear();
    const std::pair<LineErrors, SerialEvent> kinds[] = {
        {{.frame = true}, SerialEventFrame},
        {{.overrun = true}, SerialEventOverrun},
        {{.parity = true}, SerialEventParity},
        {{.overflow = true}, SerialEventReceiveOverflow},
    };
    for (const auto& [errors, event] : kinds) {
        mEvents.clear();
        mLine.errors = errors;
        far.Arrive("x");
        mReactor.Yield(0);
        mReactor.Yield(0);
        EXPECT_THAT(mEvents, ElementsAre(event));
    }
    EXPECT_THAT(mTrace.lines,
                ElementsAre("rx x", "event line errors: frame", "rx x",
                            "event line errors: overrun", "rx x", "event line errors: parity",
                            "rx x", "event line errors: overflow"));
}

TEST_F(SerialControlTest, LineErrorsAreToldOnceAndBeforeTheirBytes) {
    mPort.SetReceiveThreshold(1);
    mLine.errors = {.frame = true, .parity = true};
    Open().Arrive("x");
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventFrame, SerialEventParity, SerialEventReceive));
    EXPECT_THAT(mTrace.lines, Contains("event line errors: frame parity"));
    mEvents.clear();
    mChannel->Arrive("y");
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
}

TEST_F(SerialControlTest, LineErrorsOfAWaitWithoutDispatchWaitForTheLoop) {
    mPort.SetReceiveThreshold(0);
    mLine.errors = {.frame = true};
    Open().Arrive("x");
    EXPECT_TRUE(mPort.WaitForReceive(10));
    EXPECT_THAT(mEvents, IsEmpty());
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventFrame));
}

TEST_F(SerialControlTest, LineErrorsThatNobodyHeardAreNotToldLater) {
    FakeChannel& far = Open();
    mPort.SetEventSink({});
    mLine.errors = {.frame = true};
    far.Arrive("x");
    EXPECT_EQ(mPort.ReadLine(10), "x");
    mPort.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, IsEmpty());
    mLine.errors = {.frame = true};
    far.Arrive("y");
    EXPECT_EQ(mPort.ReadLine(10), "y");
    mPort.SetPortOpen(false);
    mPort.SetPortOpen(true);
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, IsEmpty()) << "those of a closed port";
}

TEST_F(SerialControlTest, ADetachedSinkHearsNothing) {
    mPort.SetReceiveThreshold(1);
    FakeChannel& far = Open();
    mPort.SetEventSink({});
    far.Arrive("abc");
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, IsEmpty());
    EXPECT_EQ(mPort.ReceiveCount(), 3);
}

TEST_F(SerialControlTest, AWaitForBytesEndsWithTheFirstOfThem) {
    Open().Arrive("late", 30'000);
    EXPECT_EQ(MsFor([&] { EXPECT_TRUE(mPort.WaitForReceive(500)); }), 30);
    EXPECT_EQ(MsFor([&] { EXPECT_TRUE(mPort.WaitForReceive(500)); }), 0);
}

TEST_F(SerialControlTest, AWaitForBytesThatDoNotComeTakesItsTime) {
    Open();
    EXPECT_EQ(MsFor([&] { EXPECT_FALSE(mPort.WaitForReceive(500)); }), 500);
    EXPECT_EQ(MsFor([&] { EXPECT_FALSE(mPort.WaitForReceive(0)); }), 0);
    EXPECT_EQ(mReactor.Yields(), 0);
}

TEST_F(SerialControlTest, ALineReadEndsWithItsLineEndOrItsTime) {
    FakeChannel& far = Open();
    far.Arrive("PRI", 10'000);
    far.Arrive("NT\r", 20'000);
    far.Arrive("\nrest", 30'000);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(500), "PRINT"); }), 30);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(500), "rest"); }), 500);
}

TEST_F(SerialControlTest, ACarriageReturnThatComesLastEndsTheLineAfterAMoment) {
    FakeChannel& far = Open();
    far.Arrive("one\r", 0);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(500), "one"); }), 50);
    far.Arrive("two\r", 0);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(20), "two"); }), 20);
}

TEST_F(SerialControlTest, BytesThatAreStillOnTheirWayCountAndWakeAWaitWhenTheyHaveLeft) {
    mPort.SetPortSettings("9600,n,8,1");
    Open();
    mLine.pending = 96; // 100 ms at 9600 baud
    mLine.pendingEnd = mReactor.NowUs() + 100'000;
    mPort.Write("x");
    EXPECT_EQ(mPort.TransmitCount(), 96);
    EXPECT_EQ(MsFor([&] {
                  while (mPort.TransmitCount() > 0)
                      mReactor.Yield(10'000);
              }),
              100);
    EXPECT_LE(mReactor.Yields(), 3);
}

TEST_F(SerialControlTest, WhatTheLineDoesNotTakeWaitsAndGoesLater) {
    Open();
    mLine.takes = 3;
    mPort.Write("abcdef");
    EXPECT_EQ(mLine.written, "abc");
    EXPECT_EQ(mPort.TransmitCount(), 3);
    mPort.Write("gh");
    EXPECT_EQ(mPort.TransmitCount(), 5);
    mLine.takes = 100;
    mChannel->Changed();
    mReactor.Yield(0);
    EXPECT_EQ(mLine.written, "abcdefgh");
    EXPECT_EQ(mPort.TransmitCount(), 0);
}

TEST_F(SerialControlTest, AFlushOfTheTransmitBufferEmptiesQueueAndDevice) {
    Open();
    mLine.takes = 0;
    mLine.pending = 7;
    mPort.Write("abc");
    EXPECT_EQ(mPort.TransmitCount(), 10);
    mPort.FlushTransmit();
    EXPECT_EQ(mPort.TransmitCount(), 0);
    EXPECT_EQ(mLine.outputDiscards, 1);
}

TEST_F(SerialControlTest, ACancelGoesAheadOfWhatWaitsForTheLine) {
    Open();
    const ScratchFolder folder;
    mPort.SetTransferKind(TransferBinary);
    mPort.SetBinaryProtocol(BinaryZModem);
    mPort.SendFile(folder.Write("a.bin", std::string(5000, 'x')));
    mReactor.Yield(0);
    mLine.pending = 4000; // on their way
    mLine.written.clear();
    for (int again = 0; again < 3; ++again)
        mPort.SetTransferState(TransferAborting);
    EXPECT_EQ(mLine.outputDiscards, 1) << "the cancel itself is not discarded";
    EXPECT_THAT(mLine.written, StartsWith(std::string(8, '\x18')));
    mReactor.Pass(3000);
    EXPECT_LT(mPort.TransferState(), TransferStarted);
}

TEST_F(SerialControlTest, ATransferBeginsWithWhatHasComeBeforeIt) {
    Open().Arrive("rz\r**\x18"
                  "B0100000023be50\r\n\x11"); // a receiver was started a moment ago
    mReactor.Yield(0);
    const ScratchFolder folder;
    mPort.SetTransferKind(TransferBinary);
    mPort.SetBinaryProtocol(BinaryZModem);
    mPort.SendFile(folder.Write("a.bin", "x"));
    mReactor.Yield(0);
    EXPECT_THAT(mLine.written, HasSubstr("a.bin")) << "the file is offered at once";
}

TEST_F(SerialControlTest, AWaitWithoutDispatchStillSendsWhatIsQueued) {
    Open();
    mLine.takes = 0;
    mPort.Write("queued");
    mLine.takes = 100;
    EXPECT_FALSE(mPort.WaitForReceive(100));
    EXPECT_EQ(mLine.written, "queued");
    EXPECT_THAT(mEvents, IsEmpty());
}

TEST_F(SerialControlTest, TypedKeysTakeOnlyTheFreeSpace) {
    mPort.SetBufferSizes(16, 4);
    Open();
    mLine.takes = 0;
    EXPECT_EQ(mPort.TypeKeys("abcdef"), 4U);
    EXPECT_EQ(mPort.TypeKeys("g"), 0U);
    EXPECT_EQ(mPort.TransmitCount(), 4);
}

TEST_F(SerialControlTest, SettingsGoToTheLineWithTheHandshaking) {
    mPort.SetHandshaking(3);
    EXPECT_EQ(mPort.Handshaking(), 3);
    mPort.SetPortSettings("2400,m,7,2");
    Open();
    mPort.SetHandshaking(2);
    ASSERT_EQ(mLine.settings.size(), 2U);
    EXPECT_EQ(mLine.settings[0].baud, 2400);
    EXPECT_EQ(mLine.settings[0].parity, 'm');
    EXPECT_EQ(mLine.settings[0].dataBits, 7);
    EXPECT_EQ(mLine.settings[0].stopBits, 2);
    EXPECT_TRUE(mLine.settings[0].xonXoff);
    EXPECT_TRUE(mLine.settings[0].rtsCts);
    EXPECT_FALSE(mLine.settings[1].xonXoff);
    EXPECT_TRUE(mLine.settings[1].rtsCts);
}

TEST_F(SerialControlTest, ASettingsTextThatDoesNotParseIsRefusedAndKeepsTheOldOne) {
    for (const char* text : {"", "9600", "9600,N,8", "9601,N,8,1", "9600,X,8,1", "9600,N,9,1",
                             "9600,N,8,3", "9600,N,8,1,", "9600,NN,8,1", "9600,,8,1", "x,N,8,1"}) {
        const QNError error = ErrorOf([&] { mPort.SetPortSettings(text); });
        EXPECT_EQ(error.Number(), 5) << text;
        EXPECT_EQ(error.Source(), "PDQComm");
    }
    EXPECT_EQ(mPort.PortSettings(), "9600,N,8,1");
}

TEST_F(SerialControlTest, SettingsThatTheOpenDeviceRefusesKeepTheOldOnes) {
    Open();
    mLine.configureResult = {IoStatus::Unsupported, 0, "the device does not take the parity"};
    const QNError error = ErrorOf([&] { mPort.SetPortSettings("9600,M,8,1"); });
    EXPECT_EQ(error.Number(), SerialErrDevice);
    EXPECT_THAT(error.Description(), HasSubstr("does not take the parity"));
    EXPECT_EQ(mPort.PortSettings(), "9600,N,8,1");
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(SerialControlTest, AFailedOpeningIsRaisedWithTheNumberOfItsKind) {
    EXPECT_EQ(OpenError({IoStatus::Missing, 2, "gone"}).Number(), SerialErrNoSuchPort);
    EXPECT_EQ(OpenError({IoStatus::Denied, 13, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::Unsupported, 0, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::TimedOut, 0, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::Failed, 5, "no"}).Number(), SerialErrDevice);
    const QNError busy = OpenError({IoStatus::Busy, 16, "held by minicom (process 77)"});
    EXPECT_EQ(busy.Number(), SerialErrPortBusy);
    EXPECT_EQ(busy.Source(), "PDQComm");
    EXPECT_EQ(busy.Description(), "Port COM3 (/dev/fake): held by minicom (process 77).");
    ASSERT_TRUE(mPort.LastFailure());
    EXPECT_EQ(mPort.LastFailure()->number, SerialErrPortBusy);
    EXPECT_EQ(mPort.LastFailure()->reason.systemNumber, 16);
    EXPECT_FALSE(mPort.PortOpen());
    mLine.openResult = {};
    Open();
    EXPECT_FALSE(mPort.LastFailure());
}

TEST_F(SerialControlTest, ANumberWithoutAnAddressDoesNotOpen) {
    for (const std::int16_t number : std::initializer_list<std::int16_t>{4, 16, 17, -1}) {
        mPort.SetPortNumber(number);
        const QNError error = ErrorOf([&] { mPort.SetPortOpen(true); });
        EXPECT_EQ(error.Number(), SerialErrNoSuchPort);
        EXPECT_THAT(error.Description(), HasSubstr("COM" + std::to_string(number)));
        EXPECT_FALSE(mPort.ProbePort(number));
    }
}

TEST_F(SerialControlTest, OpeningTwiceOpensOnce) {
    Open();
    mPort.SetPortOpen(true);
    EXPECT_EQ(mLine.opens, 1);
    mPort.SetPortOpen(false);
    mPort.SetPortOpen(false);
    EXPECT_EQ(mLine.closes, 1);
}

TEST_F(SerialControlTest, AnotherNumberOnAnOpenPortMovesThere) {
    Open();
    EXPECT_EQ(mPort.Bindings().Give(4, "/dev/fake4"), "");
    mPort.SetPortNumber(4);
    EXPECT_TRUE(mPort.PortOpen());
    EXPECT_EQ(mPort.PortName(), "COM4 (/dev/fake4)");
    EXPECT_EQ(mLine.opens, 2);
    EXPECT_EQ(mLine.closes, 1);
}

TEST_F(SerialControlTest, DsrFollowsTheLineWhereThereIsOne) {
    mLine.dsr = false;
    EXPECT_FALSE(mPort.DSRState());
    Open();
    EXPECT_FALSE(mPort.DSRState());
    mLine.dsr = true;
    EXPECT_TRUE(mPort.DSRState());
}

TEST_F(SerialControlTest, TheTraceTellsOnceThatThereAreNoModemLines) {
    for (int time = 0; time < 3; ++time) {
        Open();
        EXPECT_TRUE(mPort.DSRState());
        mPort.SetPortOpen(false);
    }
    EXPECT_EQ(std::count(mTrace.lines.begin(), mTrace.lines.end(),
                         "event no modem lines here: DSR reads as held"),
              1);
}

TEST_F(SerialControlTest, TheTraceHoldsWhatTravelled) {
    FakeChannel& far = Open();
    mLine.dsr = true;
    mLine.takes = 2;
    mPort.Write("abc");
    mLine.takes = 9;
    far.Changed();
    mReactor.Yield(0);
    far.Arrive("Ok\r\n");
    mReactor.Yield(0);
    EXPECT_THAT(mTrace.lines, ElementsAre("event open COM3 (/dev/fake) 9600,N,8,1",
                                          "event no modem lines here: DSR reads as held", "tx ab",
                                          "tx c", "rx Ok\r\n"));
    EXPECT_EQ(mTrace.lastMs, mReactor.NowMs());
}

TEST_F(SerialControlTest, ALossBeforeASinkIsThereIsToldWhenItComes) {
    Open();
    mPort.SetEventSink({});
    mLine.loss = IoResult{IoStatus::Lost, 5, "unplugged"};
    mChannel->Changed();
    mReactor.Yield(0);
    EXPECT_FALSE(mPort.PortOpen());
    mPort.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, ElementsAre(SerialEventPortLost));
    mReactor.Yield(0);
    EXPECT_EQ(mEvents.size(), 1U);
}

TEST_F(SerialControlTest, ALossDuringALineReadGivesWhatHadCome) {
    Open().Arrive("half", 10'000);
    mReactor.Yield(20);
    mLine.loss = IoResult{IoStatus::Lost, 5, "unplugged"};
    EXPECT_EQ(MsFor([&] { mPort.ReadLine(500); }), 0);
    EXPECT_FALSE(mPort.PortOpen());
    mReactor.Yield(0);
    EXPECT_THAT(mEvents, Contains(SerialEventPortLost));
}

TEST_F(SerialControlTest, PropertiesWithoutEffectAreKept) {
    EXPECT_TRUE(mPort.IsFunctional());
    mPort.SetTag("EXCLUSIVE_USE");
    EXPECT_EQ(mPort.Tag(), "EXCLUSIVE_USE");
    mPort.SetReceiveMode(ReceiveToTerminal);
    EXPECT_EQ(mPort.ReceiveMode(), ReceiveToTerminal);
    mPort.SetReserved(2);
    std::string shown;
    mPort.WriteTerminal("before anybody looks");
    mPort.SetTerminalSink([&](std::string_view text) { shown += text; });
    mPort.WriteTerminal("Ok\r\n");
    EXPECT_EQ(shown, "Ok\r\n");
}

TEST_F(SerialControlTest, ASmallerReceiveBufferKeepsWhatWaits) {
    Open().Arrive("abcdef");
    mReactor.Yield(0);
    mPort.SetBufferSizes(4, 4);
    EXPECT_EQ(mPort.ReceiveCount(), 6);
    EXPECT_EQ(mPort.TransmitBufferSize(), 4);
    EXPECT_EQ(mPort.Read(), "abcdef");
}

} // namespace
} // namespace qncomm::testing

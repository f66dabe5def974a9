// The bytes, events and losses of the serial control, and what its trace holds of them.

#include "SerialControlFixture.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST_F(SerialControlTest, AnEventWaitsForTheThreshold) {
    mPort.SetReceiveThreshold(4);
    ScriptedChannel& far = Open();
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
    ScriptedChannel& far = Open();
    mTrace.mLines.clear();
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
    EXPECT_THAT(mTrace.mLines,
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
    EXPECT_THAT(mTrace.mLines, Contains("event line errors: frame parity"));
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
    ScriptedChannel& far = Open();
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
    ScriptedChannel& far = Open();
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
    ScriptedChannel& far = Open();
    far.Arrive("PRI", 10'000);
    far.Arrive("NT\r", 20'000);
    far.Arrive("\nrest", 30'000);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(500), "PRINT"); }), 30);
    EXPECT_EQ(MsFor([&] { EXPECT_EQ(mPort.ReadLine(500), "rest"); }), 500);
}

TEST_F(SerialControlTest, ACarriageReturnThatComesLastEndsTheLineAfterAMoment) {
    ScriptedChannel& far = Open();
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

TEST_F(SerialControlTest, TheTraceHoldsWhatTravelled) {
    ScriptedChannel& far = Open();
    mLine.dsr = true;
    mLine.takes = 2;
    mPort.Write("abc");
    mLine.takes = 9;
    far.Changed();
    mReactor.Yield(0);
    far.Arrive("Ok\r\n");
    mReactor.Yield(0);
    EXPECT_THAT(mTrace.mLines, ElementsAre("event open COM3 (/dev/fake) 9600,N,8,1",
                                           "event no modem lines here: DSR reads as held", "tx ab",
                                           "tx c", "rx Ok\r\n"));
    EXPECT_EQ(mTrace.mLastMs, mReactor.NowMs());
}

TEST_F(SerialControlTest, TellsHowLongTheLineNeedsForWhatItsDeviceTookAtOnce) {
    mPort.SetPortSettings("9600,N,8,1");
    Open();
    EXPECT_EQ(mPort.LineTimeLeft(), 0);
    mPort.Write(std::string(480, 'x'));
    mReactor.Yield(100);
    mPort.Write(std::string(480, 'x'));
    EXPECT_EQ(mPort.LineTimeLeft(), 900);
    mReactor.Yield(400);
    EXPECT_EQ(mPort.LineTimeLeft(), 500);
    mReactor.Yield(1000);
    EXPECT_EQ(mPort.LineTimeLeft(), 0);
    mPort.Write("once more");
    EXPECT_EQ(mPort.LineTimeLeft(), 10);
    mPort.FlushTransmit();
    EXPECT_EQ(mPort.LineTimeLeft(), 0);
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

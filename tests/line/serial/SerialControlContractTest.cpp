// What SerialControl.h promises, asked of the control that tests script and of the real one: a
// stand-in that is kinder than the world hides what the world does.

#include "common/RuntimeErrors.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScriptedSerial.h"
#include "testing/line/Endpoint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A control on port 1, closed, and the far side of its line.
class Rig {
  public:
    virtual ~Rig() = default;
    virtual SerialControl& Control() = 0;
    virtual MessageLoop& Loop() = 0;
    virtual void Send(const std::string& bytes) = 0;
    virtual std::string Taken() = 0;
    /// Moves what can be moved on the way.
    virtual void Pump() {}
    virtual void Unplug() = 0;
};

class ScriptedRig final : public Rig {
  public:
    ScriptedRig() {
        mSerial.mValidPorts = {1};
        mSerial.SetPortNumber(1);
        mSerial.OnSend([this](std::string& sent) { mTaken += std::exchange(sent, {}); });
    }
    SerialControl& Control() override { return mSerial; }
    MessageLoop& Loop() override { return mLoop; }
    void Send(const std::string& bytes) override { mSerial.Arrive(bytes); }
    std::string Taken() override { return mTaken; }
    void Unplug() override { mSerial.Vanish(); }

  private:
    ManualLoop mLoop;
    ScriptedSerial mSerial{mLoop};
    std::string mTaken;
};

class RealRig final : public Rig {
  public:
    explicit RealRig(std::unique_ptr<Endpoint> far) : mFar(std::move(far)) {
        EXPECT_EQ(mPort.Bindings().Give(1, mFar->Address()), "");
    }
    SerialControl& Control() override { return mPort; }
    MessageLoop& Loop() override { return mLoop; }
    void Send(const std::string& bytes) override { mFar->Send(bytes); }
    std::string Taken() override { return mFar->Taken(); }
    void Pump() override { mFar->Pump(); }
    void Unplug() override { mFar->Unplug(); }

  private:
    PollLoop mLoop;
    std::unique_ptr<Endpoint> mFar;
    PDQComm mPort{mLoop, {}, nullptr, mFar->Factory()};
};

struct ControlKind {
    const char* name;
    std::unique_ptr<Rig> (*make)();
};

class SerialContract : public ::testing::TestWithParam<ControlKind> {
  protected:
    void Open() {
        mControl.SetPortOpen(true);
        mRig->Pump();
    }
    void Watch() {
        mControl.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    }
    bool Until(const std::function<bool()>& condition) {
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (!condition() && mLoop.NowMs() < limit) {
            mRig->Pump();
            mLoop.Yield(5);
        }
        return condition();
    }
    bool Holds(std::int32_t bytes) {
        return Until([&] { return mControl.ReceiveCount() == bytes; });
    }
    /// Gives what might happen wrongly the time to happen.
    void Settle() {
        for (int turn = 0; turn < 3; ++turn) {
            mRig->Pump();
            mLoop.Yield(0);
        }
    }

    std::unique_ptr<Rig> mRig = GetParam().make();
    SerialControl& mControl = mRig->Control();
    MessageLoop& mLoop = mRig->Loop();
    std::vector<SerialEvent> mEvents;
};

// -- Settings and opening

TEST_P(SerialContract, ASettingsTextThatDoesNotParseRaisesAndChangesNothing) {
    mControl.SetPortSettings("57600,n,8,2");
    for (const char* text : {"", "57600,n,8", "7201,n,8,1", "9600,x,8,1", "9600,n,9,1",
                             "9600,n,8,3", "9600,none,8,1", "9600,n,8,1,1"})
        EXPECT_RAISED(mControl.SetPortSettings(text), RtInvalidCall);
    EXPECT_EQ(mControl.PortSettings(), "57600,n,8,2");
}

TEST_P(SerialContract, HandshakingIsItsTwoBits) {
    for (const auto& [given, kept] : {std::pair{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {7, 3}}) {
        mControl.SetHandshaking(static_cast<std::int16_t>(given));
        EXPECT_EQ(mControl.Handshaking(), kept) << given;
    }
}

TEST_P(SerialContract, OpeningAnOpenPortAndClosingAClosedOneDoNothing) {
    mControl.SetPortOpen(false);
    EXPECT_FALSE(mControl.PortOpen());
    Open();
    mRig->Send("abc");
    EXPECT_TRUE(Holds(3));
    Open();
    EXPECT_EQ(mControl.Read(), "abc");
}

TEST_P(SerialContract, APortThatIsNotThereIsRefusedAndStaysClosed) {
    EXPECT_TRUE(mControl.ProbePort(1));
    EXPECT_FALSE(mControl.ProbePort(2));
    EXPECT_FALSE(mControl.PortOpen()) << "a probe leaves nothing open";
    mControl.SetPortNumber(2);
    EXPECT_RAISED(mControl.SetPortOpen(true), SerialErrNoSuchPort);
    EXPECT_FALSE(mControl.PortOpen());
}

TEST_P(SerialContract, AnotherNumberOfAnOpenPortOpensTheOtherOne) {
    Open();
    EXPECT_RAISED(mControl.SetPortNumber(2), SerialErrNoSuchPort);
    EXPECT_FALSE(mControl.PortOpen());
    EXPECT_EQ(mControl.PortNumber(), 2);
    mControl.SetPortNumber(1);
    Open();
    mControl.SetPortNumber(1);
    EXPECT_TRUE(mControl.PortOpen());
}

TEST_P(SerialContract, AClosedPortReadsAsEmptyAtOnceAndTakesNothing) {
    const std::int64_t start = mLoop.NowMs();
    mControl.Write("nobody");
    mControl.HoldBreak(true);
    EXPECT_EQ(mControl.TransmitCount(), 0);
    EXPECT_EQ(mControl.ReceiveCount(), 0);
    EXPECT_EQ(mControl.Read(), "");
    EXPECT_EQ(mControl.ReadLine(20'000), "");
    EXPECT_FALSE(mControl.WaitForReceive(20'000));
    EXPECT_FALSE(mControl.DSRState());
    EXPECT_LT(mLoop.NowMs() - start, 10'000);
    EXPECT_EQ(mRig->Taken(), "");
}

TEST_P(SerialContract, ClosingDropsWhatWasNotReadAndTellsNothing) {
    mControl.SetReceiveThreshold(1);
    Watch();
    Open();
    mRig->Send("unread");
    EXPECT_TRUE(mControl.WaitForReceive(5000));
    mControl.SetPortOpen(false);
    Settle();
    EXPECT_EQ(mControl.ReceiveCount(), 0);
    EXPECT_THAT(mEvents, IsEmpty());
}

TEST_P(SerialContract, AKeptPortClosesAndOpensAsAnyOther) {
    mControl.KeepPort(true);
    Open();
    mControl.SetPortOpen(false);
    EXPECT_FALSE(mControl.PortOpen());
    Open();
    EXPECT_TRUE(mControl.PortOpen());
    mControl.KeepPort(false);
    EXPECT_TRUE(mControl.PortOpen());
}

// -- Events

TEST_P(SerialContract, AReceiveEventWaitsForTheThresholdAndForTheLoop) {
    mControl.SetReceiveThreshold(4);
    Watch();
    Open();
    mRig->Send("abc");
    EXPECT_TRUE(Holds(3));
    Settle();
    EXPECT_THAT(mEvents, IsEmpty());
    mRig->Send("d");
    EXPECT_TRUE(Until([&] { return !mEvents.empty(); }));
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
    EXPECT_EQ(mControl.Read(), "abcd");
}

TEST_P(SerialContract, AWaitForBytesDispatchesNothing) {
    mControl.SetReceiveThreshold(1);
    Watch();
    Open();
    mRig->Send("x");
    EXPECT_TRUE(mControl.WaitForReceive(5000));
    EXPECT_THAT(mEvents, IsEmpty());
    Settle();
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
}

TEST_P(SerialContract, AThresholdOrASinkThatComesLateHearsOfWhatWaits) {
    Watch();
    Open();
    mControl.SetReceiveThreshold(0);
    mRig->Send("waiting");
    EXPECT_TRUE(Holds(7));
    Settle();
    EXPECT_THAT(mEvents, IsEmpty());
    mControl.SetReceiveThreshold(1);
    EXPECT_TRUE(Until([&] { return !mEvents.empty(); }));
    mControl.SetEventSink({});
    Settle();
    EXPECT_THAT(mEvents, ElementsAre(SerialEventReceive));
    Watch();
    EXPECT_TRUE(Until([&] { return mEvents.size() == 2; }));
    EXPECT_EQ(mControl.Read(), "waiting");
}

TEST_P(SerialContract, ASinkMayCloseThePortAndDetachItself) {
    mControl.SetReceiveThreshold(1);
    mControl.SetEventSink([this](SerialEvent event) {
        mEvents.push_back(event);
        mControl.SetPortOpen(false);
        mControl.SetEventSink({});
    });
    Open();
    mRig->Send("x");
    EXPECT_TRUE(Until([&] { return !mEvents.empty(); }));
    EXPECT_FALSE(mControl.PortOpen());
}

TEST_P(SerialContract, ALossClosesThePortAndIsToldOnceFromTheLoop) {
    Watch();
    Open();
    mRig->Unplug();
    EXPECT_THAT(mEvents, IsEmpty());
    EXPECT_TRUE(Until([&] { return !mEvents.empty(); }));
    EXPECT_FALSE(mControl.PortOpen());
    Settle();
    EXPECT_THAT(mEvents, ElementsAre(SerialEventPortLost));
}

// -- Bytes

TEST_P(SerialContract, ALineEndsInCrLfCrOrLf) {
    Open();
    mRig->Send("PRINT 1\r\nlone\rlast\nnext");
    for (const char* line : {"PRINT 1", "lone", "last"})
        EXPECT_EQ(mControl.ReadLine(5000), line);
    EXPECT_EQ(mControl.ReadLine(20), "next") << "what has come when the time is up";
    EXPECT_EQ(mControl.ReadLine(1), "");
}

TEST_P(SerialContract, ACarriageReturnThatComesLastEndsItsLine) {
    Open();
    mRig->Send("one\r");
    EXPECT_TRUE(Holds(4));
    EXPECT_EQ(mControl.ReadLine(5000), "one");
    EXPECT_EQ(mControl.ReceiveCount(), 0);
}

TEST_P(SerialContract, MoreThanTheReceiveBufferHoldsArrivesWholeAndInOrder) {
    mControl.SetBufferSizes(16, 32);
    EXPECT_EQ(mControl.TransmitBufferSize(), 32);
    Open();
    const std::string text = "0123456789abcdefghijklmnopqrstuvwxyz";
    mRig->Send(text);
    EXPECT_TRUE(Holds(16));
    Settle();
    EXPECT_EQ(mControl.ReceiveCount(), 16);
    std::string got;
    EXPECT_TRUE(Until([&] { return (got += mControl.Read()).size() >= text.size(); }));
    EXPECT_EQ(got, text);
}

TEST_P(SerialContract, AFlushThrowsAwayWhatHasCome) {
    Open();
    mRig->Send("old");
    EXPECT_TRUE(Holds(3));
    mControl.FlushReceive();
    EXPECT_EQ(mControl.ReceiveCount(), 0);
    mRig->Send("new");
    EXPECT_TRUE(Holds(3));
    EXPECT_EQ(mControl.Read(), "new");
}

TEST_P(SerialContract, WhatIsWrittenArrivesInOrderAndCountsNoMore) {
    Open();
    mControl.Write("PRINT ");
    mControl.Write(std::string("\0\r\n\xFF", 4));
    EXPECT_TRUE(Until([&] { return mRig->Taken().size() == 10; }));
    EXPECT_EQ(mRig->Taken(), std::string("PRINT \0\r\n\xFF", 10));
    EXPECT_TRUE(Until([&] { return mControl.TransmitCount() == 0; }));
}

// -- Transfers and what is kept

TEST_P(SerialContract, ATransferOnAClosedPortFailsFromTheLoop) {
    std::vector<std::int16_t> states;
    mControl.SetEventSink([&](SerialEvent event) {
        if (event == SerialEventTransfer) states.push_back(mControl.TransferState());
    });
    for (const std::int16_t kind : {TransferKermit, TransferBinary}) {
        states.clear();
        mControl.SetTransferKind(kind);
        mControl.SendFile("/proc/self/status");
        EXPECT_THAT(states, IsEmpty());
        EXPECT_TRUE(Until([&] { return !states.empty() && states.back() == TransferFailed; }));
    }
}

TEST_P(SerialContract, AnAbortOfNoTransferDoesNothing) {
    Watch();
    Open();
    mControl.SetTransferState(TransferAborting);
    Settle();
    EXPECT_THAT(mEvents, IsEmpty());
    EXPECT_EQ(mControl.TransferState(), TransferIdle);
}

TEST_P(SerialContract, TagAndReceiveModeAreKept) {
    mControl.SetTag("EXCLUSIVE_USE");
    mControl.SetReceiveMode(ReceiveToTerminal);
    Open();
    mControl.SetPortOpen(false);
    EXPECT_EQ(mControl.Tag(), "EXCLUSIVE_USE");
    EXPECT_EQ(mControl.ReceiveMode(), ReceiveToTerminal);
}

INSTANTIATE_TEST_SUITE_P(Controls, SerialContract,
                         ::testing::Values(ControlKind{"Scripted",
                                                       []() -> std::unique_ptr<Rig> {
                                                           return std::make_unique<ScriptedRig>();
                                                       }},
                                           ControlKind{"OnScriptedChannel",
                                                       []() -> std::unique_ptr<Rig> {
                                                           return std::make_unique<RealRig>(
                                                               MakeFakeEndpoint());
                                                       }},
                                           ControlKind{"OnPty",
                                                       []() -> std::unique_ptr<Rig> {
                                                           return std::make_unique<RealRig>(
                                                               MakePtyEndpoint());
                                                       }}),
                         [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace qncomm::testing

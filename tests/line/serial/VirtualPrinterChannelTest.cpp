// The virtual printer in process as a line, on a driven clock.

#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "serial/PDQComm.h"
#include "testing/stack/ManualReactor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

class InProcessLine : public ::testing::Test {
  protected:
    void Use(const std::string& address) {
        EXPECT_EQ(mPort.Bindings().Give(1, address), "");
        mPort.SetPortNumber(1);
    }
    void Open(const std::string& settings = "9600,N,8,2") {
        mPort.SetPortSettings(settings);
        mPort.SetPortOpen(true);
    }
    /// What the printer answers until it is quiet for half a second.
    std::string Ask(const std::string& line) {
        mPort.Write(line + "\r\n");
        std::string reply;
        while (mPort.WaitForReceive(500))
            reply += mPort.Read();
        return reply;
    }

    ManualReactor mReactor;
    PDQComm mPort{mReactor, PortBindings(AllChannelKinds())};
};

TEST_F(InProcessLine, ALineIsEchoedAndAnswered) {
    Use("sim:R7G?baud=9600&format=n,8,2");
    Open();
    EXPECT_THAT(Ask("PRINT 6*7"), HasSubstr("42\r\nOk\r\n"));
}

TEST_F(InProcessLine, AHostAtAnotherRateIsNotUnderstood) {
    Use("sim:R7G?baud=57600&format=n,8,2");
    Open("9600,N,8,2");
    EXPECT_THAT(Ask("PRINT 6*7"), ::testing::Not(HasSubstr("42")));
    mPort.SetPortSettings("57600,N,8,2");
    mPort.FlushReceive();
    Ask("");
    EXPECT_THAT(Ask("PRINT 6*7"), HasSubstr("42\r\nOk\r\n"));
}

TEST_F(InProcessLine, ThePrinterKeepsItsStateWhileThePortIsClosed) {
    Use("sim:R7G?baud=9600&format=n,8,2");
    Open();
    Ask("A% = 17");
    mPort.SetPortOpen(false);
    Open();
    EXPECT_THAT(Ask("PRINT A%"), HasSubstr("17\r\nOk\r\n"));
}

TEST_F(InProcessLine, EventsComeFromTheLoop) {
    Use("sim:R7G?baud=9600&format=n,8,2");
    Open();
    std::string text;
    mPort.SetReceiveThreshold(1);
    mPort.SetEventSink([&](SerialEvent event) {
        EXPECT_EQ(event, SerialEventReceive);
        text += mPort.Read();
    });
    mPort.Write("PRINT 6*7\r\n");
    EXPECT_EQ(text, "");
    for (int yields = 0; yields < 1000 && text.find("Ok\r\n") == std::string::npos; ++yields)
        mReactor.Yield(1000);
    EXPECT_THAT(text, HasSubstr("42\r\nOk\r\n"));
}

TEST_F(InProcessLine, APacedLineTakesItsTime) {
    Use("sim:R7G?baud=300&format=n,8,1&paced=on");
    Open("300,N,8,1");
    const std::int64_t start = mReactor.NowMs();
    mPort.Write("PRINT 1\r\n");
    EXPECT_EQ(mPort.TransmitCount(), 9);
    while (mPort.TransmitCount() > 0)
        mReactor.Yield(10'000);
    EXPECT_GE(mReactor.NowMs() - start, 290); // 9 bytes of 10 bits, less what rounding takes
}

/// A channel to such a printer, opened with these settings.
std::unique_ptr<ByteChannel> OpenChannel(Reactor& reactor, const std::string& printer,
                                         const LineSettings& settings) {
    auto channel = VirtualPrinterKind.make("sim:" + printer, reactor);
    EXPECT_TRUE(channel->Open(settings).Ok());
    return channel;
}

/// Writes everything and says how long that took.
std::int64_t WriteAll(ManualReactor& reactor, ByteChannel& channel, std::string_view bytes) {
    const std::int64_t start = reactor.NowMs();
    while (!bytes.empty() && reactor.NowMs() - start < 100'000) {
        bytes.remove_prefix(channel.Write(bytes).count);
        if (!bytes.empty()) channel.Wait({.writable = true}, 1'000'000);
    }
    EXPECT_EQ(bytes, "") << "the line never had room again";
    return reactor.NowMs() - start;
}

TEST(InProcessChannel, APacedLineTakesAnUploadAsItCarriesIt) {
    ManualReactor reactor;
    const LineSettings settings{.baud = 9600, .stopBits = 2};
    const auto channel = OpenChannel(reactor, "R7G?paced", settings);
    const std::string upload(5000, '\0');
    EXPECT_EQ(channel->Write(upload).count, 128U);
    EXPECT_EQ(channel->Write(upload).count, 0U);
    EXPECT_FALSE(channel->Wait({.writable = true}, 0).writable);
    EXPECT_EQ(channel->OutputPending(), 128U);
    // 5000 bytes of 11 bits, the first 128 as yet on the line, the last 104 still so at the end: it
    // has had room for 32 when it took the last eight.
    EXPECT_NEAR(static_cast<double>(WriteAll(reactor, *channel, upload)), 5757, 5);
    const auto plain = OpenChannel(reactor, "R7G", settings);
    EXPECT_EQ(plain->Write(upload).count, upload.size());
}

TEST(InProcessChannel, TheHandlerHearsOfRoomOnAPacedLine) {
    ManualReactor reactor;
    const auto channel = OpenChannel(reactor, "R7G?paced", {.baud = 9600, .stopBits = 2});
    int calls = 0;
    channel->SetHandler([&](FdEvents events) {
        EXPECT_TRUE(events.writable);
        channel->Want({});
        ++calls;
    });
    channel->Write(std::string(200, '\0'));
    channel->Want({.writable = true});
    reactor.Pass(36);
    EXPECT_EQ(calls, 0) << "a quarter of what it takes is under way for longer";
    reactor.Pass(2);
    EXPECT_EQ(calls, 1);
}

/// The printer is told to let hosts wait, and then is at work for ten seconds.
constexpr const char* Busy = "R7G?paced&baud=115200&answer=10000:PRINT";

TEST(InProcessChannel, AHostWaitsForCtsOrXonWhereBothSidesAreSetUpForIt) {
    struct FlowRow {
        const char* item;
        bool xonXoff;
        bool rtsCts;
    };
    for (const FlowRow& row :
         {FlowRow{"RTS/CTS", false, true}, FlowRow{"XON/XOFF,DATA FROM HOST", true, false}}) {
        ManualReactor reactor;
        const auto channel = OpenChannel(
            reactor, Busy,
            {.baud = 115200, .stopBits = 2, .xonXoff = row.xonXoff, .rtsCts = row.rtsCts});
        WriteAll(reactor, *channel,
                 "SETUP\"SER-COM,UART1,FLOWCONTROL," + std::string(row.item) + ",ENABLE\"\r");
        channel->Wait({.writable = true}, 1'000'000);
        reactor.Pass(100);
        const std::int64_t took =
            WriteAll(reactor, *channel, "PRINT 1\r" + std::string(6000, '\0') + "A%=5:PRINT A%\r");
        EXPECT_GT(took, 9000) << row.item;
        reactor.Pass(12'000);
        std::string all(4096, '\0');
        all.resize(channel->Read(all).count);
        EXPECT_TRUE(all.ends_with("A%=5:PRINT A%\r\n5\r\nOk\r\n")) << all;
        EXPECT_EQ(all.find_first_of("\x11\x13"), std::string::npos);
    }
}

TEST_F(InProcessLine, ADroppedDsrShows) {
    Use("sim:R7G?dsr=off");
    Open();
    EXPECT_FALSE(mPort.DSRState());
    mPort.SetPortOpen(false);
    Use("sim:R7G");
    EXPECT_TRUE(mPort.ProbePort(1));
}

TEST_F(InProcessLine, ACutLineIsALossAndStaysOne) {
    Use("sim:R7G?baud=9600&format=n,8,2&cut=5");
    Open();
    std::string told;
    mPort.SetEventSink([&](SerialEvent event) {
        if (event == SerialEventPortLost) told += "lost ";
    });
    Ask("PRINT 6*7");
    mReactor.Yield(0);
    EXPECT_FALSE(mPort.PortOpen());
    EXPECT_EQ(told, "lost ");
    EXPECT_THROW(mPort.SetPortOpen(true), QNError);
}

} // namespace
} // namespace qncomm::testing

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

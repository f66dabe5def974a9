// What only a socket has: connections that are kept, refused and reset.

#include "common/QNError.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

/// A listening socket on the loopback that counts who comes.
class Server {
  public:
    Server() : mListener(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (::bind(mListener.Get(), generic, length) != 0 || ::listen(mListener.Get(), 8) != 0
            || ::getsockname(mListener.Get(), generic, &length) != 0)
            throw std::runtime_error("no listening socket");
        mPort = std::to_string(ntohs(address.sin_port));
    }

    const std::string& Port() const { return mPort; }
    /// The next connection, without a descriptor when nobody came.
    Fd Accept() {
        return Fd(::accept4(mListener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    }
    void Stop() { mListener.Reset(); }
    /// From now on it does not answer to who comes, as a host that was switched off.
    void FallSilent() {
        ASSERT_EQ(::listen(mListener.Get(), 0), 0);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        ASSERT_EQ(::getsockname(mListener.Get(), generic, &length), 0);
        for (Fd& guest : mGuests) {
            guest.Reset(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            static_cast<void>(::connect(guest.Get(), generic, length));
        }
    }
    /// It takes who has come, and who comes.
    void Wake() {
        ASSERT_EQ(::listen(mListener.Get(), 8), 0);
        while (Accept()) {
        }
    }

  private:
    Fd mListener;
    std::array<Fd, 4> mGuests; ///< who fill its queue
    std::string mPort;
};

/// What reading the far side tells: data, nothing yet, or the end.
ssize_t Look(const Fd& peer) {
    std::array<char, 64> scratch{};
    const ssize_t count = ::recv(peer.Get(), scratch.data(), scratch.size(), MSG_DONTWAIT);
    return count < 0 && errno != EAGAIN ? 0 : count;
}

class TcpTest : public ::testing::Test {
  protected:
    TcpTest() {
        EXPECT_EQ(mPort.Bindings().Give(1, "tcp://localhost:" + mServer.Port()), "");
        mPort.SetPortNumber(1);
    }
    QNError OpenError() {
        try {
            mPort.SetPortOpen(true);
        } catch (const QNError& error) {
            return error;
        }
        ADD_FAILURE() << "the port opened";
        return {0, "", ""};
    }

    Server mServer;
    PollLoop mLoop;
    PDQComm mPort{mLoop, {}};
};

TEST_F(TcpTest, OpeningAgainSoonTakesUpTheSameConnection) {
    mPort.SetPortOpen(true);
    const Fd peer = mServer.Accept();
    ASSERT_TRUE(peer);
    for (int time = 0; time < 28; ++time) {
        mPort.SetPortOpen(false);
        mPort.SetPortOpen(true);
    }
    EXPECT_FALSE(mServer.Accept());
    ASSERT_EQ(::send(peer.Get(), "Ok\r\n", 4, MSG_NOSIGNAL), 4);
    EXPECT_EQ(mPort.ReadLine(5000), "Ok");
}

TEST_F(TcpTest, WhatComesBetweenTwoOpeningsIsDropped) {
    mPort.SetPortOpen(true);
    const Fd peer = mServer.Accept();
    mPort.SetPortOpen(false);
    ASSERT_EQ(::send(peer.Get(), "stale", 5, MSG_NOSIGNAL), 5);
    mPort.SetPortOpen(true);
    ASSERT_EQ(::send(peer.Get(), "fresh\r\n", 7, MSG_NOSIGNAL), 7);
    EXPECT_EQ(mPort.ReadLine(5000), "fresh");
}

TEST_F(TcpTest, AConnectionThatEndedWhileClosedIsMadeAnew) {
    mPort.SetPortOpen(true);
    Fd peer = mServer.Accept();
    mPort.SetPortOpen(false);
    peer.Reset();
    mPort.SetPortOpen(true);
    peer = mServer.Accept();
    ASSERT_TRUE(peer);
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(TcpTest, AClosedPortLetsGoOfItsConnectionAfterAMoment) {
    mPort.SetPortOpen(true);
    const Fd peer = mServer.Accept();
    mPort.SetPortOpen(false);
    EXPECT_EQ(Look(peer), -1);
    bool ended = false;
    for (int yields = 0; yields < 100 && !ended; ++yields) {
        mLoop.Yield(1000); // ends with the channel's own alarm
        ended = Look(peer) == 0;
    }
    EXPECT_TRUE(ended);
}

/// A port whose connection the far side has ended.
class LostTcpTest : public TcpTest {
  protected:
    LostTcpTest() {
        mPort.SetPortOpen(true);
        mServer.Accept().Reset();
        while (mPort.PortOpen())
            mLoop.Yield(1000); // ends with the loss
    }
};

TEST_F(LostTcpTest, ReachingAHostThatDoesNotAnswerWaitsForNothing) {
    mServer.FallSilent();
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_FALSE(mPort.ReachPort());
    EXPECT_FALSE(mPort.ReachPort());
    EXPECT_LT(mLoop.NowMs() - begun, 1000);
    mServer.Wake();
    while (!mPort.ReachPort())
        mLoop.Yield(50); // until the system tries again
    mPort.SetPortOpen(true);
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(LostTcpTest, ReachingFailsAsOpeningDoes) {
    mServer.Stop();
    EXPECT_TRUE(mPort.ReachPort());
    EXPECT_THAT(OpenError().Description(), HasSubstr("nobody listens there"));
}

TEST_F(LostTcpTest, WhatIsReachedAndNotOpenedIsLetGoOf) {
    ASSERT_TRUE(mPort.ReachPort());
    const Fd peer = mServer.Accept();
    ASSERT_TRUE(peer);
    EXPECT_EQ(Look(peer), -1);
    while (Look(peer) != 0)
        mLoop.Yield(1000); // ends with the connector's own alarm
}

TEST_F(TcpTest, TheControlsEndIsTheConnectionsEnd) {
    Fd peer;
    {
        PDQComm passing(mLoop, mPort.Bindings());
        passing.SetPortOpen(true);
        peer = mServer.Accept();
        EXPECT_EQ(Look(peer), -1);
    }
    EXPECT_TRUE(mLoop.WaitFor(peer.Get(), {.readable = true}, 5'000'000).readable);
    EXPECT_EQ(Look(peer), 0);
}

TEST_F(TcpTest, APortWhereNobodyListensSaysSo) {
    mServer.Stop();
    const QNError error = OpenError();
    EXPECT_EQ(error.Number(), SerialErrDevice);
    EXPECT_THAT(error.Description(), HasSubstr("nobody listens there"));
    EXPECT_THAT(error.Description(), HasSubstr("tcp://localhost:" + mServer.Port()));
    EXPECT_FALSE(mPort.ProbePort(1));
}

TEST_F(TcpTest, AHostThatIsNotKnownSaysSo) {
    EXPECT_EQ(mPort.Bindings().Give(1, "tcp://printer.invalid:9100"), "");
    const QNError error = OpenError();
    EXPECT_TRUE(error.Number() == SerialErrNoSuchPort || error.Number() == SerialErrDevice);
    EXPECT_THAT(error.Description(), HasSubstr("printer.invalid"));
}

TEST_F(TcpTest, AnOrderlyEndOfTheOtherSideIsALoss) {
    mPort.SetPortOpen(true);
    Fd peer = mServer.Accept();
    ASSERT_EQ(::send(peer.Get(), "bye\r\n", 5, MSG_NOSIGNAL), 5);
    EXPECT_EQ(mPort.ReadLine(5000), "bye");
    peer.Reset();
    EXPECT_FALSE(mPort.WaitForReceive(5000));
    EXPECT_FALSE(mPort.PortOpen());
    ASSERT_TRUE(mPort.LastFailure());
    EXPECT_THAT(mPort.LastFailure()->description, HasSubstr("the other side closed"));
    mPort.SetPortOpen(true);
    EXPECT_FALSE(mPort.LastFailure());
    ASSERT_TRUE(mPort.LastLoss()) << "open again, and lost before all the same";
    EXPECT_THAT(mPort.LastLoss()->description, HasSubstr("the other side closed"));
}

} // namespace
} // namespace qncomm::testing

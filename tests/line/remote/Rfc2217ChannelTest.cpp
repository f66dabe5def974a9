// The channel to a remote serial port over real sockets, against servers that do as they should and
// servers that do not.
#include "Rfc2217Channel.h"
#include "HastyReactor.h"
#include "RemoteServer.h"
#include "platform/PollLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

constexpr LineSettings Settings{57600, 'e', 7, 2, false, true};
constexpr int Telnet = 255;

/// Replaces each occurrence of one piece in what a server says.
RemoteServer::Bend Replacing(std::string what, std::string with) {
    return [what = std::move(what), with = std::move(with)](std::string output) {
        for (std::size_t at = 0; (at = output.find(what, at)) != std::string::npos;
             at += with.size())
            output.replace(at, what.size(), with);
        return output;
    };
}

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

class RemoteChannel : public ::testing::Test {
  protected:
    Rfc2217Channel& To(const RemoteServer& server) {
        mChannel = std::make_unique<Rfc2217Channel>(mLoop, "127.0.0.1", server.Service());
        return *mChannel;
    }

    bool Until(const std::function<bool()>& condition) {
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (!condition() && mLoop.NowMs() < limit)
            mLoop.WaitFor(-1, {}, 1000);
        return condition();
    }

    /// Reads what comes until so many bytes are there.
    std::string ReadCount(std::size_t count) {
        std::string text;
        std::array<char, 1000> buffer{};
        Until([&] {
            const IoCount got = mChannel->Read(buffer);
            text.append(buffer.data(), got.count);
            return text.size() >= count || !got.result.Ok();
        });
        return text;
    }

    PollLoop mLoop;
    std::unique_ptr<Rfc2217Channel> mChannel;
};

TEST_F(RemoteChannel, IsReadyWithItsSettingsWhenOpenReturns) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    EXPECT_EQ(server.Format(), "57600,e,7,2");
    EXPECT_EQ(channel.Dsr(), true);
    ASSERT_TRUE(channel.Configure({2400, 's', 8, 1, true, false}).Ok());
    EXPECT_EQ(server.Format(), "2400,s,8,1");
    EXPECT_EQ(channel.Write("to the printer").count, 14U);
    EXPECT_TRUE(Until([&] { return server.Heard() == "to the printer"; }));
    server.Do([](qnsim::ComPortServer& port) { port.Send("to the host"); });
    EXPECT_EQ(ReadCount(11), "to the host");
}

TEST_F(RemoteChannel, SettingThatTheServerDoesNotTakeFailsWithBothValues) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    const IoResult result = channel.Open({250, 'n', 8, 1, false, false});
    EXPECT_EQ(result.status, IoStatus::Unsupported);
    EXPECT_EQ(result.text, "the remote port does not take 250 baud, it answers 9600 baud");
    EXPECT_TRUE(channel.Open(Settings).Ok()) << "the next settings are none of the last one's";
}

TEST_F(RemoteChannel, ServerThatOffersNoPortControlSaysSo) {
    RemoteServer server(Replacing(Bytes({Telnet, 253, 44}), Bytes({Telnet, 254, 44})));
    const IoResult result = To(server).Open(Settings);
    EXPECT_EQ(result.status, IoStatus::Unsupported);
    EXPECT_THAT(result.text, HasSubstr("no remote port control"));
}

TEST_F(RemoteChannel, NobodyListening) {
    std::string service;
    {
        const RemoteServer server;
        service = server.Service();
    }
    Rfc2217Channel channel(mLoop, "127.0.0.1", service);
    const IoResult result = channel.Open(Settings);
    EXPECT_FALSE(result.Ok());
    EXPECT_THAT(result.text, HasSubstr("nobody listens"));
    EXPECT_FALSE(channel.Probe().Ok());
}

TEST_F(RemoteChannel, ConnectionIsKeptFromOneOpeningToTheNext) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    EXPECT_TRUE(channel.Probe().Ok());
    for (const int baud : {9600, 19200, 38400}) {
        ASSERT_TRUE(channel.Open({baud, 'n', 8, 2, false, false}).Ok());
        EXPECT_EQ(server.Format(), std::to_string(baud) + ",n,8,2");
        channel.Close();
    }
    EXPECT_EQ(server.Connections(), 1);
    server.HangUp();
    ASSERT_TRUE(channel.Open(Settings).Ok()) << "it ended while nobody held the port";
    EXPECT_EQ(server.Connections(), 2);
}

TEST_F(RemoteChannel, LastWordsBeforeClosingAreLeftToTheLine) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    EXPECT_EQ(server.TakenBack(), 1) << "what a former opening left there";
    EXPECT_EQ(channel.Write("OO").count, 2U);
    channel.Close();
    mChannel.reset();
    ASSERT_TRUE(Until([&] { return server.HostIsGone(); }));
    EXPECT_EQ(server.Heard(), "OO");
    EXPECT_EQ(server.TakenBack(), 1);
}

TEST_F(RemoteChannel, WhatCameWhileThePortWasClosedIsNotRead) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    channel.Close();
    server.Do([](qnsim::ComPortServer& port) { port.Send("late"); });
    ASSERT_TRUE(channel.Open(Settings).Ok());
    server.Do([](qnsim::ComPortServer& port) { port.Send("stale"); });
    ASSERT_TRUE(channel.Wait({.readable = true}, 10'000'000).readable);
    channel.DiscardInput();
    ASSERT_TRUE(channel.Configure(Settings).Ok()) << "after this the purge has been answered";
    server.Do([](qnsim::ComPortServer& port) { port.Send("fresh"); });
    EXPECT_EQ(ReadCount(5), "fresh");
}

TEST_F(RemoteChannel, ServerThatNeverAnswersPurgesIsStillHeard) {
    RemoteServer server(Replacing(Bytes({Telnet, 250, 44, 112, 1, Telnet, 240}), ""));
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    channel.DiscardInput();
    server.Do([](qnsim::ComPortServer& port) { port.Send("heard"); });
    EXPECT_EQ(ReadCount(5), "heard");
}

TEST_F(RemoteChannel, BreakAndModemLinesPass) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    EXPECT_TRUE(channel.SetBreak(true).Ok());
    EXPECT_TRUE(channel.SetBreak(false).Ok());
    EXPECT_TRUE(Until([&] { return server.Breaks() == 1; }));
    server.Do([](qnsim::ComPortServer& port) { port.ShowLines(false, true); });
    std::array<char, 100> buffer{};
    EXPECT_TRUE(Until([&] {
        EXPECT_EQ(channel.Read(buffer).count, 0U);
        return channel.Dsr() == false;
    }));
}

TEST_F(RemoteChannel, PauseThatTheServerAsksForIsKept) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    const auto say = [&server](int word) {
        server.Do([word](qnsim::ComPortServer& port) {
            port.Output() += Bytes({Telnet, 250, 44, word, Telnet, 240});
        });
    };
    say(108);
    EXPECT_TRUE(channel.Wait({.readable = true}, 10'000'000).readable);
    std::array<char, 100> buffer{};
    EXPECT_EQ(channel.Read(buffer).count, 0U);
    EXPECT_EQ(channel.Write("held").count, 0U);
    EXPECT_FALSE(channel.Wait({.writable = true}, 1000).writable);
    say(109);
    EXPECT_TRUE(channel.Wait({.readable = true, .writable = true}, 10'000'000).readable);
    channel.Read(buffer);
    EXPECT_TRUE(channel.Wait({.writable = true}, 10'000'000).writable);
    EXPECT_EQ(channel.Write("sent").count, 4U);
    EXPECT_TRUE(Until([&] { return server.Heard() == "sent"; }));
}

TEST_F(RemoteChannel, EndOfTheConnectionIsALoss) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    bool hungUp = false;
    channel.SetHandler([&](FdEvents events) { hungUp = hungUp || events.Any(); });
    channel.Want({.readable = true});
    server.HangUp();
    while (!hungUp)
        mLoop.Yield(1000);
    std::array<char, 100> buffer{};
    EXPECT_EQ(channel.Read(buffer).result.status, IoStatus::Lost);
    channel.Close();
    EXPECT_TRUE(channel.Open(Settings).Ok());
}

TEST_F(RemoteChannel, MegabyteOfEveryByteArrivesWholeThoughTheServerPauses) {
    RemoteServer server;
    Rfc2217Channel& channel = To(server);
    ASSERT_TRUE(channel.Open(Settings).Ok());
    std::string all;
    for (int i = 0; i < 1 << 20; ++i)
        all += static_cast<char>(i * 7 % 256);
    std::string_view left = all;
    server.SetDeaf(true);
    bool filled = false;
    channel.SetHandler([&](FdEvents) {});
    while (!left.empty()) {
        channel.Want({.writable = true});
        const IoCount sent = channel.Write(left);
        ASSERT_TRUE(sent.result.Ok());
        left.remove_prefix(sent.count);
        if (sent.count > 0) continue;
        if (!std::exchange(filled, true)) server.SetDeaf(false);
        mLoop.Yield(1000);
    }
    server.SetDeaf(false);
    EXPECT_TRUE(Until([&] {
        channel.Wait({.writable = true}, 1000);
        return server.Heard().size() == all.size();
    }));
    EXPECT_EQ(server.Heard(), all);
}

// -- Servers that keep silent: the waits for them are bounded, on a clock that does not wait

TEST(SilentRemoteServer, ThatSpeaksNoTelnetIsNamedAsSuch) {
    RemoteServer server([](const std::string&) { return "PRICES\r\n"; });
    HastyReactor loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const IoResult result = channel.Open(Settings);
    EXPECT_EQ(result.status, IoStatus::TimedOut);
    EXPECT_THAT(result.text, HasSubstr("who listens there does not speak RFC 2217"));
}

TEST(SilentRemoteServer, ThatSaysNothingMayServeSomebodyElse) {
    RemoteServer server([](const std::string&) { return std::string(); });
    HastyReactor loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const IoResult result = channel.Open(Settings);
    EXPECT_EQ(result.status, IoStatus::TimedOut);
    EXPECT_THAT(result.text, HasSubstr("says nothing: it serves somebody else"));
}

TEST(SilentRemoteServer, ThatHangsUpAtOnceMayServeSomebodyElse) {
    RemoteServer* hangingUp = nullptr;
    RemoteServer server([&](const std::string&) {
        hangingUp->HangUp();
        return std::string();
    });
    hangingUp = &server;
    PollLoop loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const IoResult result = channel.Open(Settings);
    EXPECT_EQ(result.status, IoStatus::Lost);
    EXPECT_THAT(result.text, HasSubstr("before it answered: somebody else may hold the port"));
}

TEST(SilentRemoteServer, ThatDoesNotAnswerASettingIsNamedWithIt) {
    RemoteServer server(Replacing(Bytes({Telnet, 250, 44, 103}), Bytes({Telnet, 250, 44, 99})));
    HastyReactor loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const IoResult result = channel.Open(Settings);
    EXPECT_EQ(result.status, IoStatus::TimedOut);
    EXPECT_THAT(result.text, HasSubstr("does not answer to the setting of even parity"));
}

TEST(SilentRemoteServer, ThatNeverTellsItsModemLinesHasNone) {
    RemoteServer server(Replacing(Bytes({Telnet, 250, 44, 107}), Bytes({Telnet, 250, 44, 99})));
    HastyReactor loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    EXPECT_TRUE(channel.Open(Settings).Ok());
    EXPECT_FALSE(channel.Dsr().has_value());
}

} // namespace
} // namespace qncomm::testing

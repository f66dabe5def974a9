// Hosts that mean harm at the virtual printer's sockets: its program stays within its memory, and
// the next host is served.

#include "testing/programs/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <functional>
#include <vector>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

constexpr int PatienceMs = 40'000; // no printer that serves takes so long

/// What a flood has, in bytes. Less where the memory of a program says nothing.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t Flood = std::size_t{1} * 1024 * 1024;
#else
constexpr std::size_t Flood = std::size_t{24} * 1024 * 1024;
#endif

/// A host at a socket, which reads what comes and keeps the last of it.
class Guest {
  public:
    explicit Guest(std::uint16_t port)
        : mSocket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_in target{};
        target.sin_family = AF_INET;
        target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        target.sin_port = htons(port);
        // It goes on by itself.
        static_cast<void>(
            ::connect(mSocket.Get(), reinterpret_cast<sockaddr*>(&target), sizeof target));
    }

    /// Sends it all; false when the other side takes nothing for so long, or has left.
    bool Send(std::string_view text, int patienceMs = PatienceMs, bool reads = true) {
        while (!text.empty()) {
            pollfd entry{mSocket.Get(), POLLOUT, 0};
            if (reads) entry.events |= POLLIN;
            if (::poll(&entry, 1, patienceMs) <= 0) return false;
            if ((entry.revents & POLLIN) != 0 && !Read()) return false;
            if ((entry.revents & POLLOUT) == 0) continue;
            const ssize_t sent =
                ::send(mSocket.Get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent < 0) return false;
            text.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }
    /// The same text over and over.
    void SendMuch(std::string text) {
        while (text.size() < 65536)
            text += text;
        for (std::size_t sent = 0; sent < Flood && Send(text); sent += text.size()) {
        }
    }
    /// Reads until that has come; false when it does not.
    bool Hears(std::string_view text) {
        while (mHeard.find(text) == std::string::npos) {
            pollfd entry{mSocket.Get(), POLLIN, 0};
            if (::poll(&entry, 1, PatienceMs) <= 0 || !Read()) return false;
        }
        return true;
    }
    const std::string& Heard() const { return mHeard; }
    /// Leaves without a word.
    void Reset() {
        const linger none{1, 0};
        ::setsockopt(mSocket.Get(), SOL_SOCKET, SO_LINGER, &none, sizeof none);
        mSocket.Reset();
    }

  private:
    bool Read() {
        std::array<char, 65536> part{};
        const ssize_t got = ::recv(mSocket.Get(), part.data(), part.size(), 0);
        if (got < 0 && errno == EAGAIN) return true;
        if (got <= 0) return false;
        constexpr std::size_t kept = 4096;
        mHeard.append(part.data(), static_cast<std::size_t>(got));
        mHeard.erase(0, mHeard.size() - std::min(mHeard.size(), kept));
        return true;
    }

    Fd mSocket;
    std::string mHeard;
};

/// The virtual printer's program with little memory.
class Served {
  public:
    explicit Served(const std::string& kind) : mProgram(CommandLine(kind)) {
        if (mProgram.WaitForOut("\n"))
            mPort = static_cast<std::uint16_t>(
                std::stoi(mProgram.Out().substr(mProgram.Out().rfind(':') + 1)));
    }

    std::uint16_t Port() const { return mPort; }
    int End() {
        mProgram.Signal(SIGTERM);
        const int status = mProgram.Wait();
        std::cout << "figure: " << mProgram.PeakKb() << " KiB at most\n";
        return status;
    }
    const std::string& Err() const { return mProgram.Err(); }

  private:
    static std::vector<std::string> CommandLine(const std::string& kind) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return {QNSIM_PROGRAM, kind, "0"};
#else
        return {"bash", "-c", "ulimit -d 16384; exec \"$@\"", "bash", QNSIM_PROGRAM, kind, "0"};
#endif
    }

    Program mProgram;
    std::uint16_t mPort = 0;
};

struct Attack {
    const char* name;
    std::function<void(Guest&)> carry;
    int guests = 1;
};

std::ostream& operator<<(std::ostream& out, const Attack& attack) {
    return out << attack.name;
}

class HostileGuests : public ::testing::TestWithParam<std::tuple<const char*, Attack>> {};

TEST_P(HostileGuests, LeaveAPrinterThatServesTheNextOne) {
    const auto& [kind, attack] = GetParam();
    Served served(kind);
    ASSERT_NE(served.Port(), 0) << served.Err();
    {
        std::vector<Guest> guests;
        for (int count = 0; count < attack.guests; ++count)
            attack.carry(guests.emplace_back(served.Port()));
    }
    Guest next(served.Port());
    EXPECT_TRUE(next.Send("\rPRINT 6*7\r"));
    EXPECT_TRUE(next.Hears("\r\n42\r\nOk\r\n")) << next.Heard();
    EXPECT_EQ(served.End(), 0) << served.Err();
}

const std::string CancelTransfer(10, '\x18');

const Attack Attacks[] = {
    Attack{"ALineWithoutEnd", [](Guest& guest) { guest.SendMuch("PRICES "); }},
    Attack{"Zeros", [](Guest& guest) { guest.SendMuch(std::string(16, '\0')); }},
    Attack{"AnswersThatNobodyReads",
           [](Guest& guest) {
               std::string lines;
               for (int count = 0; count < 10'000; ++count)
                   lines += "PRINT 1\r";
               for (int count = 0; count < 100 && guest.Send(lines, 300, false); ++count) {
               }
           }},
    Attack{"AProgramThatTalksOn",
           [](Guest& guest) {
               guest.Send("10 PRINT 42:GOTO 10\rRUN\r");
               EXPECT_TRUE(guest.Hears("42\r\n42\r\n"));
               guest.Send("\x03");
               EXPECT_TRUE(guest.Hears("Ok\r\n"));
           }},
    Attack{"OptionsWithoutEnd", [](Guest& guest) { guest.SendMuch("\xff\xfd\x05\xff\xfb\x06"); }},
    Attack{"AnOptionWithoutEnd",
           [](Guest& guest) {
               guest.Send("\xff\xfa\x2c");
               guest.SendMuch("x");
           }},
    Attack{"RatesThatAreNot",
           [](Guest& guest) {
               using namespace std::string_literals;
               guest.SendMuch("\xff\xfb\x2c\xff\xfa\x2c\x01\0\0\0\0\xff\xf0"s
                              "\xff\xfa\x2c\x01\xfe\xfe\xfe\xfe\xff\xf0"s);
           }},
    Attack{"ALeaving",
           [](Guest& guest) {
               guest.Send("PRINT ");
               guest.Reset();
           }},
    Attack{"ATransferOfNoise",
           [](Guest& guest) {
               guest.Send("TRANSFER Z \"R\"\r");
               guest.SendMuch("PRICES ");
               guest.Send(CancelTransfer);
               EXPECT_TRUE(guest.Hears("Ok\r\n"));
           }},
    Attack{"ThreeHundred", [](Guest& /*guest*/) {}, 300}};

/// The name of an attack at a kind of socket.
std::string NameOf(const ::testing::TestParamInfo<std::tuple<const char*, Attack>>& info) {
    return std::get<1>(info.param).name
           + std::string(std::string_view(std::get<0>(info.param)) == "--tcp" ? "AtASocket"
                                                                              : "AtARemotePort");
}

INSTANTIATE_TEST_SUITE_P(Of, HostileGuests,
                         ::testing::Combine(::testing::Values("--tcp", "--rfc2217"),
                                            ::testing::ValuesIn(Attacks)),
                         NameOf);

} // namespace
} // namespace qncomm::testing

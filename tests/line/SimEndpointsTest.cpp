// The virtual printer at its endpoints: a real pseudo-terminal and a real socket, served by the
// program's own loop.
#include "endpoints/PrinterServer.h"
#include "endpoints/PtyEndpoint.h"
#include "endpoints/TcpEndpoint.h"
#include "platform/PollLoop.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace qncomm::testing {

using namespace qnsim;
namespace {

constexpr int PatienceMs = 10'000; // how long a test waits for what must come

Options Printer(std::string_view address) {
    const ParseResult result = ParseAddress(address);
    EXPECT_TRUE(result.options.has_value()) << result.error;
    return result.options.value_or(Options{});
}

/// A served printer; stops with its owner.
class Served {
  public:
    Served(std::string_view address, qncomm::PollLoop& loop, OpenedEndpoint opened)
        : mLoop(loop),
          mEndpoint(std::move(opened.endpoint)),
          mStop(::eventfd(0, EFD_CLOEXEC)),
          mPrinter(Printer(address)),
          mThread([this] { Serve(); }) {}
    ~Served() { Stop(); }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    void Stop() {
        if (!mThread.joinable()) return;
        ::eventfd_write(mStop.Get(), 1);
        mThread.join();
    }
    bool WaitForCut() {
        mThread.join();
        return mCut;
    }

  private:
    void Serve() {
        PrinterServer server(mPrinter, *mEndpoint, mLoop);
        const auto stop =
            mLoop.Watch(mStop.Get(), {.readable = true}, [&](qncomm::FdEvents) { server.Stop(); });
        mCut = !server.Run();
        mEndpoint.reset();
    }

    qncomm::PollLoop& mLoop;
    std::unique_ptr<Endpoint> mEndpoint;
    qncomm::Fd mStop;
    VirtualPrinter mPrinter;
    bool mCut = false;
    std::thread mThread;
};

/// Reads until the text ends as wanted, the other side leaves, or patience runs out.
std::string ReadUntil(int descriptor, std::string_view end, int patience = PatienceMs) {
    std::string text;
    while (!text.ends_with(end)) {
        pollfd wait{descriptor, POLLIN, 0};
        if (::poll(&wait, 1, patience) <= 0) return text;
        char piece[4096];
        const ssize_t count = ::read(descriptor, piece, sizeof(piece));
        if (count <= 0) return text;
        text.append(piece, static_cast<std::size_t>(count));
    }
    return text;
}

std::string Ask(int descriptor, std::string_view line) {
    const std::string bytes = std::string(line) + "\r\n";
    EXPECT_EQ(::write(descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    return ReadUntil(descriptor, "Ok\r\n");
}

void SetRate(int device, speed_t speed) {
    termios settings{};
    ::tcgetattr(device, &settings);
    ::cfsetspeed(&settings, speed);
    ::tcsetattr(device, TCSANOW, &settings);
}

qncomm::Fd OpenDevice(const std::string& path, speed_t speed, bool twoStopBits) {
    qncomm::Fd device(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(static_cast<bool>(device)) << path;
    termios settings{};
    EXPECT_EQ(::tcgetattr(device.Get(), &settings), 0);
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, speed);
    settings.c_cflag |= CLOCAL;
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB);
    if (twoStopBits) settings.c_cflag |= CSTOPB;
    EXPECT_EQ(::tcsetattr(device.Get(), TCSANOW, &settings), 0);
    return device;
}

qncomm::Fd Connect(const std::string& address) {
    qncomm::Fd host(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    target.sin_port =
        htons(static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1))));
    EXPECT_EQ(
        ::connect(host.Get(), static_cast<sockaddr*>(static_cast<void*>(&target)), sizeof(target)),
        0);
    return host;
}

TEST(PtyEndpoint, AnswersHostsThatComeAndGo) {
    qncomm::PollLoop loop;
    OpenedEndpoint opened = PtyEndpoint::Open(loop, "");
    ASSERT_TRUE(opened.endpoint) << opened.error;
    const std::string path = opened.endpoint->Address();
    const Served served("R7G", loop, std::move(opened));
    for (int visit = 0; visit < 5; ++visit) {
        const qncomm::Fd host = OpenDevice(path, B9600, true);
        EXPECT_EQ(Ask(host.Get(), "PRINT 7"), "PRINT 7\r\n7\r\nOk\r\n");
    }
}

TEST(PtyEndpoint, HearsAHostAtItsRateWhateverItsStopBits) {
    qncomm::PollLoop loop;
    OpenedEndpoint opened = PtyEndpoint::Open(loop, "");
    ASSERT_TRUE(opened.endpoint) << opened.error;
    const std::string path = opened.endpoint->Address();
    const Served served("R7G?baud=57600&format=m,7,2", loop, std::move(opened));
    {
        const qncomm::Fd wrongRate = OpenDevice(path, B19200, true);
        EXPECT_EQ(::write(wrongRate.Get(), "\r", 1), 1);
        EXPECT_EQ(ReadUntil(wrongRate.Get(), "Ok\r\n", 100).find('\r'), std::string::npos);
    }
    for (const bool two : {false, true}) {
        const qncomm::Fd host = OpenDevice(path, B57600, two);
        EXPECT_EQ(::write(host.Get(), "\r", 1), 1);
        ReadUntil(host.Get(), "Ok\r\n", 100);
        EXPECT_EQ(Ask(host.Get(), "PRINT 1"), "PRINT 1\r\n1\r\nOk\r\n");
    }
}

/// What an endpoint makes of what hosts have done since the last look.
struct Heard {
    std::string text;
    int baud = 0; ///< at which the text was sent
    bool operator==(const Heard&) const = default;
};

void PrintTo(const Heard& heard, std::ostream* out) {
    *out << '"' << heard.text << "\" at " << heard.baud;
}

/// One round of a server's work.
Heard Hear(Endpoint& endpoint) {
    Heard heard;
    endpoint.Refresh();
    if (endpoint.Connected())
        for (const HostAction& action : endpoint.Receive(100))
            heard.text += action.text;
    heard.baud = endpoint.HostFormat().baud.value_or(0);
    return heard;
}

void Send(const qncomm::Fd& host, std::string_view text) {
    EXPECT_EQ(::write(host.Get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

/// A pseudo-terminal whose rounds a test makes by itself, so that several hosts' doings fall
/// between two of them. Its settings stand at 38400 baud and one stop bit until a host
/// sets others.
class PtyRounds : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(mOpened.endpoint) << mOpened.error; }
    Endpoint& Pty() { return *mOpened.endpoint; }
    qncomm::Fd Host(speed_t speed) { return OpenDevice(Pty().Address(), speed, false); }

    qncomm::PollLoop mLoop;
    OpenedEndpoint mOpened = PtyEndpoint::Open(mLoop, "");
};

TEST_F(PtyRounds, LastBytesOfAHostCameWithItsSettingsNotWithThoseItPutBack) {
    {
        const qncomm::Fd host = Host(B9600);
        EXPECT_EQ(Hear(Pty()), (Heard{"", 9600}));
        Send(host, "OO");
        SetRate(host.Get(), B38400);
    }
    Pty().Refresh();
    EXPECT_TRUE(Pty().Connected()) << "its bytes are still to be read";
    EXPECT_EQ(Hear(Pty()), (Heard{"OO", 9600}));
    Pty().Refresh();
    EXPECT_FALSE(Pty().Connected());
}

TEST_F(PtyRounds, HostThatHasAlreadyLeftIsHeardWithTheSettingsItLeftBehind) {
    Send(Host(B19200), "OO");
    EXPECT_EQ(Hear(Pty()), (Heard{"OO", 19200}));
    Send(Host(B9600), "again");
    EXPECT_EQ(Hear(Pty()), (Heard{"again", 9600}));
}

TEST_F(PtyRounds, LastBytesOfAHostAreNotReadAsTheNextOnes) {
    {
        const qncomm::Fd host = Host(B9600);
        EXPECT_EQ(Hear(Pty()), (Heard{"", 9600}));
        Send(host, "OO");
        SetRate(host.Get(), B38400);
    }
    const qncomm::Fd next = Host(B19200);
    EXPECT_EQ(Hear(Pty()), (Heard{"OO", 9600}));
    EXPECT_EQ(Hear(Pty()), (Heard{"", 19200}));
    Send(next, "PRINT 1");
    EXPECT_EQ(Hear(Pty()), (Heard{"PRINT 1", 19200}));
}

TEST_F(PtyRounds, FirstBytesOfAHostAreNotReadAsTheFormerOnes) {
    {
        const qncomm::Fd host = Host(B9600);
        Send(host, "OO");
        EXPECT_EQ(Hear(Pty()), (Heard{"OO", 9600}));
        EXPECT_EQ(Hear(Pty()), (Heard{"", 9600}));
        SetRate(host.Get(), B38400);
    }
    const qncomm::Fd next = Host(B19200);
    Send(next, "PRINT 1");
    EXPECT_EQ(Hear(Pty()), (Heard{"PRINT 1", 19200}));
}

TEST_F(PtyRounds, SettingsThatAHostPutsBackAreNotTheNextOnes) {
    {
        const qncomm::Fd host = Host(B9600);
        EXPECT_EQ(Hear(Pty()), (Heard{"", 9600}));
    }
    EXPECT_EQ(Hear(Pty()), (Heard{"", 9600})); // left behind: they stand now
    {
        const qncomm::Fd host = Host(B19200);
        EXPECT_EQ(Hear(Pty()), (Heard{"", 19200}));
        Send(host, "OO");
        SetRate(host.Get(), B9600);
    }
    EXPECT_EQ(Hear(Pty()), (Heard{"OO", 19200}));
    Send(Host(B57600), "next");
    EXPECT_EQ(Hear(Pty()), (Heard{"next", 57600}));
}

TEST_F(PtyRounds, AHostThatOnlyListensIsSpokenToAtTheSettingsThatItHas) {
    const qncomm::Fd host = Host(B38400);
    EXPECT_EQ(Hear(Pty()), (Heard{"", 38400}));
    SetRate(host.Get(), B9600);
    Pty().Refresh();
    EXPECT_EQ(Pty().HostFormat().baud, 9600) << "before the printer says a word";
}

TEST_F(PtyRounds, LastBytesOfHostsThatThereWasNoRoomForCameWithTheSettingsOfEach) {
    for (const auto& [speed, text] : {std::pair{B9600, "a"}, std::pair{B19200, "b"}}) {
        {
            const qncomm::Fd host = Host(speed);
            Send(host, text);
            Pty().Refresh();
            SetRate(host.Get(), B38400);
        }
        Pty().Refresh();
    }
    EXPECT_EQ(Hear(Pty()), (Heard{"a", 9600}));
    EXPECT_EQ(Hear(Pty()), (Heard{"b", 19200}));
}

TEST_F(PtyRounds, SettingsThatChangeUnderAnOpenDeviceCountForWhatComesNext) {
    const qncomm::Fd host = Host(B9600);
    EXPECT_EQ(Hear(Pty()), (Heard{"", 9600}));
    for (const auto& [speed, baud] : {std::pair{B19200, 19200}, std::pair{B38400, 38400}}) {
        SetRate(host.Get(), speed);
        Send(host, "U");
        EXPECT_EQ(Hear(Pty()), (Heard{"U", baud}));
    }
}

TEST(PtyEndpoint, LinkIsMadeReplacedAndRemoved) {
    const std::string link = ::testing::TempDir() + "qnsim-link-" + std::to_string(::getpid());
    std::filesystem::create_symlink("/nowhere", link);
    qncomm::PollLoop loop;
    OpenedEndpoint opened = PtyEndpoint::Open(loop, link);
    ASSERT_TRUE(opened.endpoint) << opened.error;
    EXPECT_EQ(opened.endpoint->Address(), link);
    {
        Served served("R7G", loop, std::move(opened));
        const qncomm::Fd host = OpenDevice(link, B9600, true);
        EXPECT_EQ(Ask(host.Get(), "PRINT 1"), "PRINT 1\r\n1\r\nOk\r\n");
    }
    EXPECT_FALSE(std::filesystem::is_symlink(link));
}

TEST(PtyEndpoint, FileInTheLinksPlaceIsLeftAlone) {
    const std::string path = ::testing::TempDir();
    qncomm::PollLoop loop;
    const OpenedEndpoint opened = PtyEndpoint::Open(loop, path);
    EXPECT_FALSE(opened.endpoint);
    EXPECT_EQ(opened.systemError, EEXIST);
    EXPECT_NE(opened.error.find(path), std::string::npos);
}

TEST(PtyEndpoint, HostSeesTheLineGoWhenItIsCut) {
    qncomm::PollLoop loop;
    OpenedEndpoint opened = PtyEndpoint::Open(loop, "");
    ASSERT_TRUE(opened.endpoint) << opened.error;
    const std::string path = opened.endpoint->Address();
    Served served("R7G?cut=5", loop, std::move(opened));
    const qncomm::Fd host = OpenDevice(path, B9600, true);
    EXPECT_EQ(::write(host.Get(), "PRINT 1\r\n", 9), 9);
    EXPECT_TRUE(served.WaitForCut());
    pollfd wait{host.Get(), POLLIN, 0};
    EXPECT_EQ(::poll(&wait, 1, PatienceMs), 1);
    EXPECT_NE(wait.revents & POLLHUP, 0);
}

TEST(TcpEndpoint, AnswersHostsOneAfterTheOther) {
    qncomm::PollLoop loop;
    OpenedEndpoint opened = TcpEndpoint::Open(loop, 0);
    ASSERT_TRUE(opened.endpoint) << opened.error;
    const std::string address = opened.endpoint->Address();
    const Served served("R7A", loop, std::move(opened));
    for (int visit = 0; visit < 5; ++visit) {
        const qncomm::Fd host = Connect(address);
        EXPECT_EQ(Ask(host.Get(), "PRINT VERSION$(1)"), "PRINT VERSION$(1)\r\nR7A\r\nOk\r\n");
    }
}

TEST(TcpEndpoint, HostThatHasLeftEndsAWriteNotTheProgram) {
    qncomm::PollLoop loop;
    const OpenedEndpoint opened = TcpEndpoint::Open(loop, 0);
    ASSERT_TRUE(opened.endpoint) << opened.error;
    {
        const qncomm::Fd host = Connect(opened.endpoint->Address());
        opened.endpoint->Refresh();
        ASSERT_TRUE(opened.endpoint->Connected());
    }
    EXPECT_EQ(opened.endpoint->Write("a"), 1U); // the answer is that nobody is there
    EXPECT_EQ(opened.endpoint->Write("b"), 0U);
    EXPECT_FALSE(opened.endpoint->Connected());
}

TEST(TcpEndpoint, PortThatIsTakenIsNamed) {
    qncomm::PollLoop loop;
    const OpenedEndpoint first = TcpEndpoint::Open(loop, 0);
    ASSERT_TRUE(first.endpoint) << first.error;
    const std::string address = first.endpoint->Address();
    const OpenedEndpoint second =
        TcpEndpoint::Open(loop, std::stoi(address.substr(address.rfind(':') + 1)));
    EXPECT_FALSE(second.endpoint);
    EXPECT_EQ(second.systemError, EADDRINUSE);
}

TEST(QnsimProgram, EndsCleanlyOnASignalAndRemovesItsLink) {
    const std::string link = ::testing::TempDir() + "qnsim-program-" + std::to_string(::getpid());
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const qncomm::Fd output(ends[0]);
    qncomm::Fd input(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.Get(), STDOUT_FILENO);
    std::vector<std::string> words{QNSIM_PROGRAM, "--model", "R7H", "--link", link};
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    ASSERT_EQ(::posix_spawn(&child, QNSIM_PROGRAM, &actions, nullptr, arguments.data(), environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
    input.Reset();
    EXPECT_EQ(ReadUntil(output.Get(), "\n"), link + "\n");
    {
        const qncomm::Fd host = OpenDevice(link, B9600, true);
        EXPECT_EQ(Ask(host.Get(), "PRINT VERSION$(1)"), "PRINT VERSION$(1)\r\nR7H\r\nOk\r\n");
    }
    EXPECT_EQ(::kill(child, SIGTERM), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(std::filesystem::is_symlink(link));
}

} // namespace
} // namespace qncomm::testing

// Other people's programs at the other end of a remote serial port.
#include "endpoints/Rfc2217Endpoint.h"
#include "platform/PollLoop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

/// A running program of somebody else's; ends with its owner. What it prints goes to a file.
class Peer {
  public:
    Peer(std::vector<std::string> words, const fs::path& output) {
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        EXPECT_EQ(::posix_spawn(&mProcess, words[0].c_str(), &actions, nullptr, arguments.data(),
                                environ),
                  0)
            << words[0];
        posix_spawn_file_actions_destroy(&actions);
    }
    ~Peer() {
        if (mProcess <= 0) return;
        ::kill(mProcess, SIGTERM);
        Wait();
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// Its exit status.
    int Wait() {
        int status = 0;
        ::waitpid(std::exchange(mProcess, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t mProcess = 0;
};

/// Whether the programs are installed. In CI they must be; elsewhere the test says that it could
/// not judge.
bool Have(std::initializer_list<const char*> paths) {
    for (const char* const path : paths) {
        if (fs::exists(path)) continue;
        const char* const ci = std::getenv("CI");
        if (ci != nullptr && std::string_view(ci) == "true")
            ADD_FAILURE() << path << " is not installed";
        else
            std::cout << path << " is not installed: not judged here\n";
        return false;
    }
    return true;
}

class Peers : public ::testing::Test {
  protected:
    /// A port that was free a moment ago.
    static std::string FreePort() {
        PollLoop loop;
        const auto opened = qnsim::Rfc2217Endpoint::Open(loop, 0);
        const std::string address = opened.endpoint->Address();
        return address.substr(address.rfind(':') + 1);
    }

    ScratchFolder mFolder;
    PollLoop mLoop;
};

constexpr const char* Ser2net = "/usr/sbin/ser2net";

TEST_F(Peers, Ser2netCarriesTheSearchAndTheExchange) {
    if (!Have({Ser2net})) return;
    const auto printer = PrinterOnPty("R7G?baud=57600&format=n,7,1");
    const std::string port = FreePort();
    std::ofstream(mFolder.File("ser2net.yaml"))
        << "%YAML 1.1\n---\nconnection: &printer\n  accepter: telnet(rfc2217),tcp,127.0.0.1,"
        << port << "\n  connector: serialdev," << printer->Address() << ",9600n81,local\n";
    const Peer server({Ser2net, "-n", "-c", mFolder.File("ser2net.yaml")},
                      mFolder.File("ser2net.log"));
    Stack stack(mLoop, "rfc2217://127.0.0.1:" + port, {{"AutoConnctSettings", "Baud1", "57600"}});
    const std::int64_t limit = mLoop.NowMs() + 20'000;
    while (!stack.mSerial.ProbePort(1) && mLoop.NowMs() < limit)
        mLoop.WaitFor(-1, {}, 5000);
    ASSERT_TRUE(stack.mLink.AutoConnect(1)) << mFolder.Read("ser2net.log");
    EXPECT_EQ(stack.mLink.Baudrate(), "57600");
    EXPECT_EQ(stack.mLink.Stopbits(), "1");
    EXPECT_EQ(stack.mMessages.at(1), "Searching... 57600,m,8,2")
        << "the pseudo-terminal behind the server carries no data bits and no parity";
    EXPECT_EQ(stack.mMessages.at(2), "Reading Printer Setup");
    EXPECT_EQ(stack.Ask("PRINT 6*7").at(1), "42");
    std::string all;
    for (int value = 33; value < 127; ++value)
        all += value == '"' ? ' ' : static_cast<char>(value);
    EXPECT_EQ(stack.Ask("PRINT \"" + all + "\"").at(1), all);
}

constexpr const char* Python = "/usr/bin/python3";
constexpr const char* PySerial = "/usr/lib/python3/dist-packages/serial/rfc2217.py";

constexpr const char* Script = R"(
import sys, serial
port = serial.serial_for_url(sys.argv[1], baudrate=9600, bytesize=7, parity='M', stopbits=1, timeout=10)
def ask(line):
    port.write(line + b'\r\n')
    return port.read_until(b'Ok\r\n')
def show(name, value):
    print(name, value)
port.baudrate = 57600
port.bytesize = 8
port.parity = 'E'
port.stopbits = 2
port.rtscts = True
show('answer', ask(b'PRINT 6*7'))
show('dsr', port.dsr)
port.rfc2217_send_subnegotiation(serial.rfc2217.SET_LINESTATE_MASK, b'\x0e')
ask(b'BEEP')
show('line state', port._linestate)
port.baudrate = 9600
port.timeout = 0.2
show('understood at another rate', b'2' in ask(b'PRINT 2'))
show('line state', port._linestate)
port.baudrate = 57600
port.timeout = 10
port.reset_output_buffer()
port.reset_input_buffer()
port.write(b'\r')
port.read_until(b'Ok\r\n')
port.write(b'10 GOTO 10\r\nRUN\r\n')
port.read_until(b'RUN\r\n')
port.break_condition = True
port.break_condition = False
show('stopped by the break', port.read_until(b'Ok\r\n').endswith(b'Ok\r\n'))
port.close()
)";

TEST_F(Peers, PySerialSetsTheLineAsksAndBreaks) {
    if (!Have({Python, PySerial})) return;
    const auto printer = PrinterOnRfc2217("R7G?baud=57600&format=e,8,2");
    std::ofstream(mFolder.File("client.py")) << Script;
    Peer client({Python, mFolder.File("client.py"), printer->Address()},
                mFolder.File("client.log"));
    EXPECT_EQ(client.Wait(), 0);
    EXPECT_EQ(mFolder.Read("client.log"), "answer b'PRINT 6*7\\r\\n42\\r\\nOk\\r\\n'\n"
                                          "dsr True\n"
                                          "line state 0\n"
                                          "understood at another rate False\n"
                                          "line state 8\n"
                                          "stopped by the break True\n");
}

TEST_F(Peers, OwnChannelBreaksARunningProgramToo) {
    const auto printer = PrinterOnRfc2217("R7G");
    Stack stack(mLoop, printer->Address());
    ASSERT_TRUE(stack.mLink.AutoConnect(1));
    stack.mLink.SetTerminalActive(true);
    const auto shown = [&](const std::string& text) {
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (stack.mTerminalText.find(text) == std::string::npos && mLoop.NowMs() < limit)
            mLoop.Yield(50);
        return stack.mTerminalText.find(text) != std::string::npos;
    };
    stack.mSerial.TypeKeys("10 GOTO 10\rRUN\r");
    ASSERT_TRUE(shown("RUN\r\n")) << stack.mTerminalText;
    stack.mTerminalText.clear();
    EXPECT_TRUE(stack.mSerial.SetBreak(true).Ok());
    EXPECT_TRUE(stack.mSerial.SetBreak(false).Ok());
    EXPECT_TRUE(shown("Ok\r\n")) << stack.mTerminalText;
}

} // namespace
} // namespace qncomm::testing

// Feeds the terminal that it runs in, and says how long that took:  terminal_feed SOCKET FILE
//
// It reports to SOCKET that it is ready, waits there for a word, writes FILE to the terminal and
// asks it where the cursor is. The answer comes when the terminal has carried out all that came
// before; the seconds until then go back through SOCKET.

#include "FeedLine.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
namespace bench = qncomm::bench;

void MakeRaw() {
    termios settings{};
    tcgetattr(STDIN_FILENO, &settings);
    cfmakeraw(&settings);
    if (tcsetattr(STDIN_FILENO, TCSANOW, &settings) != 0) throw std::runtime_error("no terminal");
}

/// Some terminals start small and grow to what they were asked for.
void AwaitSize() {
    const auto end = Clock::now() + std::chrono::seconds(5);
    winsize size{};
    while (size.ws_row != bench::Rows || size.ws_col != bench::Columns) {
        if (Clock::now() > end) throw std::runtime_error("the terminal has another size");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ioctl(STDIN_FILENO, TIOCGWINSZ, &size);
    }
}

void Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count <= 0) throw std::runtime_error("the terminal takes no more");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void AwaitAnswer() {
    for (char c = 0; c != bench::Answer.back();)
        if (read(STDIN_FILENO, &c, 1) <= 0) throw std::runtime_error("the terminal is gone");
}

void Feed(const char* sSocket, const char* sFile) {
    std::ifstream file(sFile, std::ios::binary);
    const std::string stream{std::istreambuf_iterator<char>(file), {}};
    MakeRaw();
    AwaitSize();
    bench::FeedLine line = bench::FeedLine::To(sSocket);
    line.Say("ready");
    line.Hear();
    const auto start = Clock::now();
    Write(stream);
    Write(bench::Question);
    AwaitAnswer();
    line.Say(std::to_string(std::chrono::duration<double>(Clock::now() - start).count()));
}

} // namespace

int main(int count, char** words) try {
    if (count != 3) throw std::runtime_error("wants a socket and a file");
    Feed(words[1], words[2]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "terminal_feed: %s\n", error.what());
    return 1;
}

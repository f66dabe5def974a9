// How fast a file reaches a printer over a pseudo-terminal, beside a bare loop that writes the same
// bytes in the same pieces to the same reader; and whether memory grows with the file.

#include "PtyReader.h"
#include "platform/PollLoop.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/stack/Stack.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace qncomm {
namespace {

constexpr std::size_t PieceSize = 1024;
constexpr std::size_t Mebibyte = std::size_t{1} << 20;
constexpr int Rounds = 31;

/// A picture file of some length, removed at the end.
class PictureFile {
  public:
    PictureFile(const std::string& name, std::size_t length)
        : mPath(std::filesystem::temp_directory_path()
                / (name + std::to_string(::getpid()) + ".pcx")) {
        std::ofstream out(mPath, std::ios::binary);
        out << "\x0A\x05";
        const std::string block(PieceSize, '\x55');
        for (std::size_t left = length - 2; left > 0;) {
            const std::size_t part = std::min(left, block.size());
            out.write(block.data(), static_cast<std::streamsize>(part));
            left -= part;
        }
    }
    ~PictureFile() { std::filesystem::remove(mPath); }
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    std::string Path() const { return mPath.string(); }

  private:
    std::filesystem::path mPath;
};

double SecondsOf(const std::function<void()>& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void WaitFor(int fd, short events) {
    pollfd ready{fd, events, 0};
    if (::poll(&ready, 1, 10'000) != 1) throw std::runtime_error("the line is stuck");
}

void WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t done = ::write(fd, bytes.data(), bytes.size());
        if (done > 0)
            bytes.remove_prefix(static_cast<std::size_t>(done));
        else
            WaitFor(fd, POLLOUT);
    }
}

/// The announcement, the file in pieces, the answer: nothing else.
void BareLoad(int fd, const std::string& path, std::size_t length) {
    WriteAll(fd, "FILE& LOAD \"X\"," + std::to_string(length) + "\r");
    std::ifstream file(path, std::ios::binary);
    std::array<char, PieceSize> piece{};
    while (file.read(piece.data(), PieceSize) || file.gcount() > 0)
        WriteAll(fd, {piece.data(), static_cast<std::size_t>(file.gcount())});
    std::string answer;
    while (!answer.ends_with("Ok\r\n")) {
        WaitFor(fd, POLLIN);
        char buffer[256];
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count > 0) answer.append(buffer, static_cast<std::size_t>(count));
    }
}

/// The most memory that this process has held, in KiB.
long PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stol(line.substr(6));
    throw std::runtime_error("no memory figure");
}

/// The run that other programs disturbed least.
double Best(const std::vector<double>& times) {
    return *std::min_element(times.begin(), times.end());
}

struct Line {
    PtyReader reader;
    PollLoop loop;
    testing::Stack stack{loop, reader.Path()};
    clsQuorin quorin{stack.mLink, stack.mDesktop, qncomm::SystemFiles()};

    Line() {
        stack.mLink.SetImmediateMode(true);
        quorin.Images(); // the model and the listing are known
    }
};

void PrintRates(Line& line, const PictureFile& file) {
    const PtyReader bareReader;
    const int bare = ::open(bareReader.Path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::vector<double> bareTimes;
    std::vector<double> imageTimes;
    std::vector<double> fileTimes;
    for (int i = 0; i < Rounds; ++i) {
        bareTimes.push_back(SecondsOf([&] { BareLoad(bare, file.Path(), Mebibyte); }));
        imageTimes.push_back(SecondsOf([&] { line.quorin.InstallImage(file.Path()); }));
        fileTimes.push_back(SecondsOf([&] { line.quorin.Fileload(file.Path()); }));
    }
    ::close(bare);
    const double bareTime = Best(bareTimes);
    std::printf("1 MiB, best of %d       ms     MiB/s  of the bare loop's rate\n", Rounds);
    const auto row = [&](const char* name, double time) {
        std::printf("%-18s %8.2f %9.1f %8.2f\n", name, time * 1000, 1 / time, bareTime / time);
    };
    row("bare loop", bareTime);
    row("InstallImage", Best(imageTimes));
    row("Fileload", Best(fileTimes));
}

void PrintMemory(Line& line) {
    const long small = PeakMemory();
    const PictureFile large("qncomm-large", 64 * Mebibyte);
    line.quorin.Fileload(large.Path());
    std::printf("peak memory: %ld KiB after 1 MiB, %ld KiB after 64 MiB\n", small, PeakMemory());
}

int Main() {
    const PictureFile file("qncomm-small", Mebibyte);
    Line line;
    PrintRates(line, file);
    PrintMemory(line);
    return 0;
}

} // namespace
} // namespace qncomm

int main() {
    return qncomm::Main();
}

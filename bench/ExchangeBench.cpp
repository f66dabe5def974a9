// One exchange through the link on a pseudo-terminal beside a bare program that moves the same
// bytes, and what a wait for a silent printer costs.

#include "common/QNError.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "testing/stack/Stack.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace qncomm {
namespace {

constexpr int Exchanges = 20'000; // of each kind
constexpr int Batch = 10;         // of one kind before the other has its turn
constexpr std::int32_t SilenceMs = 5000;
constexpr std::string_view Command = "PRINT 6*7\r\n";
constexpr std::string_view Reply = "PRINT 6*7\r\n42\r\nOk\r\n";
constexpr std::string_view EndMark = "Ok\r\n";

int OpenRaw(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    termios raw{};
    if (fd < 0 || ::tcgetattr(fd, &raw) != 0) throw std::runtime_error("no pseudo-terminal");
    ::cfmakeraw(&raw);
    ::tcsetattr(fd, TCSANOW, &raw);
    return fd;
}

/// A pseudo-terminal whose other end answers each command line at once, with one write, or never.
class Line {
  public:
    explicit Line(bool answers) : mMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        std::array<char, 64> name{};
        const int fd = mMaster.Get();
        if (fd < 0 || ::grantpt(fd) != 0 || ::unlockpt(fd) != 0
            || ::ptsname_r(fd, name.data(), name.size()) != 0)
            throw std::runtime_error("no pseudo-terminal");
        mPath = name.data();
        mHolder.Reset(OpenRaw(mPath)); // the line outlives the closings of its users
        if (answers) mThread = std::thread([fd] { Serve(fd); });
    }
    ~Line() {
        mHolder.Reset(); // the last user: the thread's read fails
        if (mThread.joinable()) mThread.join();
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    const std::string& Path() const { return mPath; }

  private:
    static void Serve(int fd) {
        std::array<char, 256> bytes{};
        for (;;) {
            const ssize_t count = ::read(fd, bytes.data(), bytes.size());
            if (count <= 0) return;
            const auto lines = std::count(bytes.begin(), bytes.begin() + count, '\n');
            for (auto line = lines; line > 0; --line)
                if (::write(fd, Reply.data(), Reply.size()) < 0) return;
        }
    }

    Fd mMaster;
    Fd mHolder;
    std::string mPath;
    std::thread mThread;
};

/// termios, write, poll, read: what no program can do without.
class BareProgram {
  public:
    explicit BareProgram(const std::string& path) : mFd(OpenRaw(path)) {}

    void Exchange() {
        if (::write(mFd.Get(), Command.data(), Command.size()) < 0)
            throw std::runtime_error("write");
        std::string reply;
        std::array<char, 4096> bytes{};
        while (!reply.ends_with(EndMark)) {
            Wait(1000);
            const ssize_t count = ::read(mFd.Get(), bytes.data(), bytes.size());
            if (count > 0) reply.append(bytes.data(), static_cast<std::size_t>(count));
        }
    }
    void Wait(int ms) const {
        pollfd entry{mFd.Get(), POLLIN, 0};
        ::poll(&entry, 1, ms);
    }

  private:
    Fd mFd;
};

/// The link as a host uses it, on the serial control.
class LinkProgram {
  public:
    explicit LinkProgram(const std::string& path) : mStack(mLoop, path) {
        mStack.mSerial.SetPortOpen(true);
    }

    void Exchange() {
        mStack.mLink.OutputText(std::string(Command));
        if (mStack.mLink.InputText(mLines) != 3) throw std::runtime_error("not the reply");
    }
    void WaitInVain(std::int32_t ms) {
        try {
            mStack.mLink.InputText(mLines, true, ms);
        } catch (const QNError&) {
            return;
        }
        throw std::runtime_error("a silent line answered");
    }

  private:
    PollLoop mLoop;
    testing::Stack mStack;
    std::vector<std::string> mLines;
};

double MonotonicUs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

struct Figures {
    double rate;
    double p50;
    double p99;
};

Figures Judge(std::vector<double> micros) {
    double sum = 0;
    for (const double value : micros)
        sum += value;
    std::sort(micros.begin(), micros.end());
    return {static_cast<double>(micros.size()) / sum * 1e6, micros[micros.size() / 2],
            micros[micros.size() * 99 / 100]};
}

void RunBatch(const std::function<void()>& exchange, std::vector<double>& micros) {
    for (int count = 0; count < Batch; ++count) {
        const double start = MonotonicUs();
        exchange();
        micros.push_back(MonotonicUs() - start);
    }
}

void CompareExchanges() {
    const Line bareLine(true);
    const Line linkLine(true);
    BareProgram bare(bareLine.Path());
    LinkProgram link(linkLine.Path());
    std::vector<double> bareMicros;
    std::vector<double> linkMicros;
    for (int done = 0; done < Exchanges; done += Batch) {
        RunBatch([&] { bare.Exchange(); }, bareMicros);
        RunBatch([&] { link.Exchange(); }, linkMicros);
    }
    const Figures ofBare = Judge(std::move(bareMicros));
    const Figures ofLink = Judge(std::move(linkMicros));
    std::printf("exchange, bare termios+poll   %8.0f /s   p50 %7.1f us   p99 %7.1f us\n",
                ofBare.rate, ofBare.p50, ofBare.p99);
    std::printf("exchange, link                %8.0f /s   p50 %7.1f us   p99 %7.1f us\n",
                ofLink.rate, ofLink.p50, ofLink.p99);
    std::printf("link / bare                   rate %.3f (at least 0.9)   p99 %.3f (at most 1.5)\n",
                ofLink.rate / ofBare.rate, ofLink.p99 / ofBare.p99);
}

struct Cost {
    double cpuMs;
    long wakes;
};

Cost CostOf(const std::function<void()>& wait) {
    const auto cpuMs = [] {
        timespec used{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
    };
    const auto wakes = [] {
        rusage usage{};
        ::getrusage(RUSAGE_THREAD, &usage);
        return usage.ru_nvcsw;
    };
    const double before = cpuMs();
    const long wakesBefore = wakes();
    wait();
    return {cpuMs() - before, wakes() - wakesBefore};
}

void CompareSilence() {
    const Line bareLine(false);
    const Line linkLine(false);
    BareProgram bare(bareLine.Path());
    LinkProgram link(linkLine.Path());
    const Cost ofBare = CostOf([&] { bare.Wait(SilenceMs); });
    const Cost ofLink = CostOf([&] { link.WaitInVain(SilenceMs); });
    std::printf("waiting %d ms, bare poll    %8.3f ms CPU   slept %ld times\n", SilenceMs,
                ofBare.cpuMs, ofBare.wakes);
    std::printf("waiting %d ms, link         %8.3f ms CPU   slept %ld times   (at most 0.5 ms)\n",
                SilenceMs, ofLink.cpuMs, ofLink.wakes);
}

} // namespace
} // namespace qncomm

int main() {
    qncomm::CompareExchanges();
    qncomm::CompareSilence();
    return 0;
}

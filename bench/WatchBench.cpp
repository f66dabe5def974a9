// How fast a line that never stops talking is watched: 50 MB of text from the far side of a
// pseudo-terminal, taken by the bare grid, by a control whose terminal is shown and by "qnctl
// watch", all in one run, in turns, best of them:
//
//   scripts/build bench watch_bench && build-bench/bin/watch_bench

#include "common/MemorySettings.h"
#include "console/ConsoleDesk.h"
#include "control/PropertyBag.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "terminal/Terminal.h"
#include "testing/line/PtyPair.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using qncomm::Fd;

constexpr std::size_t Megabytes = 50;
constexpr std::string_view End = "THE END\r\n";
constexpr int Turns = 3;

/// A program of a printer that prints what it weighs and counts, without end.
const std::string& Talk() {
    static const std::string talk = [] {
        std::string text;
        for (int label = 1; text.size() < Megabytes * 1'000'000; ++label)
            text +=
                "Label " + std::to_string(label) + "  12.5 kg  4006381333931  Lot 77 of 100\r\n";
        return text += End;
    }();
    return talk;
}

/// A line whose far side talks as fast as it is heard, from Start on.
class TalkingPty {
  public:
    TalkingPty() : mPty(qncomm::testing::OpenPty()), mNear(::open(Path(), O_RDWR | O_NOCTTY)) {
        termios raw{};
        ::tcgetattr(mNear.Get(), &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(mNear.Get(), TCSANOW, &raw);
    }
    ~TalkingPty() {
        if (mThread.joinable()) mThread.join();
    }
    TalkingPty(const TalkingPty&) = delete;
    TalkingPty& operator=(const TalkingPty&) = delete;

    const char* Path() const { return mPty.path.c_str(); }
    const Fd& Near() const { return mNear; }
    void Start() {
        mThread = std::thread([this] { Say(); });
    }
    /// Whether all was said and taken.
    bool IsOver() const {
        int waiting = 0;
        return mSaid && ::ioctl(mNear.Get(), FIONREAD, &waiting) == 0 && waiting == 0;
    }

  private:
    void Say() {
        std::string_view left = Talk();
        while (!left.empty()) {
            pollfd far{mPty.master.Get(), POLLOUT, 0};
            ::poll(&far, 1, -1);
            const ssize_t said = ::write(far.fd, left.data(), left.size());
            if (said > 0) left.remove_prefix(static_cast<std::size_t>(said));
        }
        mSaid = true;
    }

    qncomm::testing::PtyPair mPty;
    Fd mNear;
    std::atomic<bool> mSaid = false;
    std::thread mThread;
};

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double Grid() {
    TalkingPty line;
    qncomm::Terminal grid;
    std::array<char, 4096> piece{};
    const auto start = Clock::now();
    line.Start();
    for (std::size_t left = Talk().size(); left > 0;) {
        pollfd near{line.Near().Get(), POLLIN, 0};
        ::poll(&near, 1, -1);
        const ssize_t came = ::read(near.fd, piece.data(), piece.size());
        if (came <= 0) continue;
        grid.Write({piece.data(), static_cast<std::size_t>(came)});
        left -= static_cast<std::size_t>(came);
    }
    return SecondsSince(start);
}

double Control() {
    TalkingPty line;
    qncomm::PollLoop loop;
    std::ostringstream said;
    qncomm::ConsoleDesk desk(loop, said);
    qncomm::ControlAssembly::Options options;
    if (const std::string wrong = options.bindings.Give(1, line.Path()); !wrong.empty())
        throw std::runtime_error(wrong);
    qncomm::ControlAssembly assembly(loop, desk.Services(), desk.View(), std::move(options));
    assembly.Control().UserControl_ReadProperties(qncomm::MemoryPropertyBag());
    const auto settings = std::make_shared<qncomm::MemorySettings>();
    settings->WriteValue("Settings", "Commport", "1");
    assembly.Control().SetRegSettings(settings);
    assembly.Control().UserControl_Show();
    const auto start = Clock::now();
    line.Start();
    while (!line.IsOver())
        loop.Yield(10);
    return SecondsSince(start);
}

double Watch() {
    TalkingPty line;
    const std::string command = std::string(QNCTL_PROGRAM " --quiet watch --port ") + line.Path()
                                + " --until 'THE END' >/dev/null";
    int status = 0;
    std::thread program([&] { status = std::system(command.c_str()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(500)); // what comes before is dropped
    const auto start = Clock::now();
    line.Start();
    program.join();
    if (status != 0) throw std::runtime_error("qnctl watch has failed");
    return SecondsSince(start);
}

struct Subject {
    const char* name;
    double (*seconds)();
};

constexpr std::array Subjects{Subject{"the grid", Grid},
                              Subject{"a control, its terminal shown", Control},
                              Subject{"qnctl watch, to /dev/null", Watch}};

} // namespace

int main() try {
    std::array<double, Subjects.size()> best{};
    best.fill(1e9);
    for (int turn = 0; turn < Turns; ++turn)
        for (std::size_t i = 0; i < Subjects.size(); ++i)
            best[i] = std::min(best[i], Subjects[i].seconds());
    const double megabytes = static_cast<double>(Talk().size()) / 1e6;
    std::printf("%-32s %8s %8s\n", "50 MB, best of 3 turns", "MB/s", "ratio");
    for (std::size_t i = 0; i < Subjects.size(); ++i)
        std::printf("%-32s %8.1f %8.2f\n", Subjects[i].name, megabytes / best[i],
                    best[0] / best[i]);
} catch (const std::exception& error) {
    std::fprintf(stderr, "watch_bench: %s\n", error.what());
    return 1;
}

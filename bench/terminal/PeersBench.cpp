// How fast the terminal takes bytes beside other people's terminals of the same size, all in one
// run, in turns, best of them:
//
//   scripts/install-packages bench test
//   QN_SCREEN=1600x1600x24 tests/face/with-display build-bench/bin/terminal_peers
//
// A program in each terminal writes the same stream and takes the time until the terminal has
// carried out all of it (see TerminalFeed.cpp). Nobody looks at tmux and the grid; st paints when
// its window is shown and is measured without that too.

#include "FeedLine.h"
#include "TerminalStreams.h"
#include "testing/programs/PeerProcess.h"

#include "terminal/Terminal.h"
#include "testing/core/ScratchFolder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <vector>

namespace {

namespace bench = qncomm::bench;
using qncomm::Terminal;
using qncomm::testing::PeerProcess;
using qncomm::testing::ScratchFolder;
using Words = std::vector<std::string>;

constexpr int Turns = 5;

/// What a terminal is measured with.
struct Stage {
    const std::string& folder; ///< for files of the terminals
    const bench::FeedListener& listener;
    Words feed; ///< the program that feeds the terminal in which it is started
    std::string_view stream;
};

Words Joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

/// Runs a program to its end and returns its exit status.
int Run(const Words& words, const std::string& sFolder) {
    PeerProcess program(words, sFolder);
    while (!program.HasEnded()) {
        pollfd output{program.Descriptor(), POLLIN, 0};
        ::poll(&output, 1, 10);
        program.Read();
    }
    return program.Status();
}

double Fed(bench::FeedLine& line) {
    line.Say("go");
    return std::stod(line.Hear());
}

// -- The terminals, each as the seconds that it takes for the stage's stream

double FromMemory(const Stage& stage) {
    constexpr std::size_t PieceBytes = 4096; // as much as one read of a port gives
    Terminal terminal;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t at = 0; at < stage.stream.size(); at += PieceBytes)
        terminal.Write(stage.stream.substr(at, PieceBytes));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The far side of a pseudo-terminal, for what does not answer by itself.
double ThroughPty(const Stage& stage, const std::function<void(std::string_view)>& take) {
    PeerProcess feed(stage.feed, stage.folder);
    const winsize size{bench::Rows, bench::Columns, 0, 0};
    ::ioctl(feed.Descriptor(), TIOCSWINSZ, &size);
    bench::FeedLine line = stage.listener.Accept();
    line.Hear();
    line.Say("go");
    for (std::size_t left = stage.stream.size() + bench::Question.size(); left > 0;) {
        pollfd output{feed.Descriptor(), POLLIN, 0};
        ::poll(&output, 1, -1);
        const std::string piece = feed.Read();
        if (piece.empty()) throw std::runtime_error("the feeding program has ended");
        take(piece);
        left -= piece.size();
    }
    feed.Write(bench::Answer);
    return std::stod(line.Hear());
}

double BareReader(const Stage& stage) {
    return ThroughPty(stage, [](std::string_view) {});
}

double Grid(const Stage& stage) {
    Terminal terminal;
    return ThroughPty(stage, [&](std::string_view piece) { terminal.Write(piece); });
}

/// A server of tmux with one window that nobody looks at.
class TmuxServer {
  public:
    explicit TmuxServer(const Stage& stage)
        : mFolder(stage.folder),
          mTmux{"tmux", "-S", mFolder + "/tmux", "-f", mFolder + "/tmux.conf"} {
        const Words session{"new-session", "-d",
                            "-x",          std::to_string(bench::Columns),
                            "-y",          std::to_string(bench::Rows)};
        if (Run(Joined(Joined(mTmux, session), stage.feed), mFolder) != 0)
            throw std::runtime_error("tmux has not started");
    }
    /// It ends with its last program by itself, but that one may still run.
    ~TmuxServer() { Run(Joined(mTmux, {"kill-server"}), mFolder); }
    TmuxServer(const TmuxServer&) = delete;
    TmuxServer& operator=(const TmuxServer&) = delete;

  private:
    std::string mFolder;
    Words mTmux;
};

double Tmux(const Stage& stage) {
    const TmuxServer server(stage);
    bench::FeedLine line = stage.listener.Accept();
    line.Hear();
    return Fed(line);
}

double St(const Stage& stage, bool bShown) {
    const std::string size = std::to_string(bench::Columns) + 'x' + std::to_string(bench::Rows);
    const PeerProcess st(
        Joined({"st", "-c", "QnPeer", "-f", "DejaVu Sans Mono:pixelsize=4", "-g", size, "-e"},
               stage.feed),
        stage.folder);
    bench::FeedLine line = stage.listener.Accept();
    line.Hear();
    const Words hide{"xdotool", "search", "--class", "QnPeer", "windowunmap", "--sync"};
    if (!bShown && Run(hide, stage.folder) != 0) throw std::runtime_error("no window of st");
    return Fed(line);
}

struct Subject {
    const char* name;
    const char* program; ///< that must be installed, nullptr for none
    bool needsDisplay;
    double (*seconds)(const Stage& stage);
};

constexpr std::array<Subject, 6> Subjects{{
    {"the grid, from memory", nullptr, false, FromMemory},
    {"a reader that looks at nothing", nullptr, false, BareReader},
    {"the grid", nullptr, false, Grid},
    {"tmux, detached", "tmux", false, Tmux},
    {"st, its window hidden", "st", true, [](const Stage& stage) { return St(stage, false); }},
    {"st, its window shown", "st", true, [](const Stage& stage) { return St(stage, true); }},
}};

/// Why a terminal cannot be measured here, "" when it can.
std::string Obstacle(const Subject& subject) {
    if (subject.program != nullptr && !PeerProcess::IsInstalled(subject.program))
        return "not installed";
    if (subject.needsDisplay && std::getenv("DISPLAY") == nullptr) return "no display";
    if (subject.needsDisplay && !PeerProcess::IsInstalled("xdotool")) return "no xdotool";
    return {};
}

/// The streams that are fed, by their names.
std::vector<bench::Workload> Streams() {
    std::vector<bench::Workload> streams = bench::Workloads();
    std::erase_if(streams, [](const bench::Workload& w) {
        const std::string_view name = w.name;
        return name != "plain text" && name != "dense sequences";
    });
    return streams;
}

/// Megabytes a second of each subject's best turn, a number for each stream.
using Rates = std::array<std::vector<double>, Subjects.size()>;

Rates Measured(const std::vector<bench::Workload>& streams, const std::string& sFeed) {
    const ScratchFolder scratch;
    scratch.Write("tmux.conf", "set -g status off\n"); // which would take a row
    const bench::FeedListener listener(scratch.File("line"));
    Rates best;
    best.fill(std::vector<double>(streams.size(), 0));
    for (int turn = 0; turn < Turns; ++turn)
        for (std::size_t i = 0; i < streams.size(); ++i) {
            const std::string& bytes = streams[i].bytes;
            const Words feed{sFeed, listener.Path(), scratch.Write("stream", bytes)};
            const Stage stage{scratch.Path(), listener, feed, bytes};
            for (std::size_t s = 0; s < Subjects.size(); ++s) {
                if (!Obstacle(Subjects[s]).empty()) continue;
                const double megabytes = static_cast<double>(bytes.size()) / 1e6;
                best[s][i] = std::max(best[s][i], megabytes / Subjects[s].seconds(stage));
            }
        }
    return best;
}

void Print(const std::vector<bench::Workload>& streams, const Rates& rates) {
    std::printf("MB/s at %d by %d, best of %d turns", bench::Rows, bench::Columns, Turns);
    for (const bench::Workload& stream : streams)
        std::printf("%18s", stream.name);
    std::printf("\n");
    for (std::size_t s = 0; s < Subjects.size(); ++s) {
        std::printf("%-39s", Subjects[s].name);
        if (const std::string obstacle = Obstacle(Subjects[s]); !obstacle.empty())
            std::printf("%18s", obstacle.c_str());
        else
            for (const double rate : rates[s])
                std::printf("%18.1f", rate);
        std::printf("\n");
    }
}

} // namespace

int main(int, char** words) try {
    const std::filesystem::path self = std::filesystem::canonical(words[0]);
    const std::vector<bench::Workload> streams = Streams();
    Print(streams, Measured(streams, (self.parent_path() / "terminal_feed").string()));
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "terminal_peers: %s\n", error.what());
    return 1;
}

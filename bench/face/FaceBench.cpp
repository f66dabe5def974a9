// A flood of text into a shown terminal beside the grid alone, how long the event loop keeps a
// click waiting meanwhile, and how often a shown, idle control wakes. Needs a display.

#include "TalkingLine.h"

#include "common/MemorySettings.h"
#include "link/clsDataLink.h"
#include "platform/PollLoop.h"
#include "platform/SystemFiles.h"
#include "qt/QNCommWidget.h"
#include "qt/QtReactor.h"
#include "serial/PDQComm.h"
#include "terminal/Terminal.h"
#include "testing/core/RecordingDesktop.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t FloodBytes = 50'000'000;
constexpr std::size_t PieceBytes = 4096; // as much as one read of a port gives
constexpr std::string_view LastLine = "the end of the flood";
constexpr const char* LineAddress = "tcp://talking:1"; // every address is the line that talks
constexpr int Turns = 3;
constexpr int ClickEveryMs = 10;
constexpr int WatchMs = 10'000;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string Flood() {
    std::mt19937 random(42); // NOLINT(cert-msc51-cpp): the same text each time
    std::string text;
    text.reserve(FloodBytes + 200);
    while (text.size() < FloodBytes) {
        const std::size_t length = 20 + random() % 59;
        for (std::size_t i = 0; i < length; ++i)
            text += random() % 6 == 0 ? ' ' : static_cast<char>('a' + random() % 26);
        text += "\r\n";
    }
    return text.append(LastLine);
}

double GridSeconds(const std::string& text) {
    qncomm::Terminal grid;
    const auto start = Clock::now();
    for (std::size_t at = 0; at < text.size(); at += PieceBytes)
        grid.Write(std::string_view(text).substr(at, PieceBytes));
    return SecondsSince(start);
}

struct NoDialogs final : qncomm::LinkDialogs {
    std::int16_t ShowCommSettings(qncomm::clsDataLink&) override { return 2; }
    std::unique_ptr<qncomm::ShownWindow> ShowWaitForReboot() override { return nullptr; }
};

bool HasLastLine(const qncomm::Terminal& grid) {
    return grid.Row(grid.CursorRow()).text == LastLine;
}

/// The whole way of the bytes, from the line through the link into the grid, in a program without
/// a toolkit.
double FacelessSeconds(const std::string& text) {
    qncomm::PollLoop loop;
    qncomm::testing::RecordingDesktop desktop;
    NoDialogs dialogs;
    qncomm::PortBindings bindings;
    bindings.Give(1, LineAddress);
    qncomm::PDQComm serial(loop, std::move(bindings), nullptr, TalkingLines(text));
    qncomm::Terminal grid;
    serial.SetTerminalSink([&](std::string_view piece) { grid.Write(piece); });
    qncomm::clsDataLink link(qncomm::LinkHost{loop, desktop, dialogs, qncomm::SystemFiles()});
    link.SetSerialPort(&serial);
    auto settings = std::make_shared<qncomm::MemorySettings>();
    settings->WriteValue("Settings", "Commport", "1");
    link.SetRegSettings(settings);
    link.SetTerminalActive(true);
    const auto start = Clock::now();
    while (!HasLastLine(grid))
        loop.Yield(1000);
    const double seconds = SecondsSince(start);
    link.TearDown();
    return seconds;
}

/// A button that is clicked all the time, from another thread, and takes note of how long each
/// click waited.
class Clicked final : public QObject {
  public:
    Clicked() : mThread(QThread::create([this] { Click(); })) { mThread->start(); }
    ~Clicked() override {
        mStop = true;
        mThread->wait();
    }
    Clicked(const Clicked&) = delete;
    Clicked& operator=(const Clicked&) = delete;

    double LongestMs() const { return mLongestMs; }
    int Count() const { return mCount; }

  private:
    struct Press final : QEvent {
        Press() : QEvent(QEvent::User) {}
        Clock::time_point at = Clock::now();
    };

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        mLongestMs = std::max(mLongestMs, SecondsSince(static_cast<Press*>(event)->at) * 1e3);
        ++mCount;
        return true;
    }

    void Click() {
        while (!mStop) {
            QThread::msleep(ClickEveryMs);
            QCoreApplication::postEvent(this, new Press);
        }
    }

    std::atomic<bool> mStop = false;
    double mLongestMs = 0;
    int mCount = 0;
    std::unique_ptr<QThread> mThread;
};

/// A control in a window of its own, on a line that brings the text.
struct Shown {
    explicit Shown(std::string_view text) {
        qncomm::ControlAssembly::Options options;
        options.factory = TalkingLines(text);
        auto* layout = new QVBoxLayout(&window);
        control =
            new qncomm::QNCommWidget(qncomm::QNCommWidget::RunMode, nullptr, std::move(options));
        layout->addWidget(control);
        layout->addWidget(other = new QWidget);
        other->setFocusPolicy(Qt::StrongFocus);
        control->setRegSettings(std::make_shared<qncomm::MemorySettings>());
        control->setPortAddress(LineAddress);
        window.resize(1000, 700);
        window.show();
        window.activateWindow();
    }

    QWidget window;
    qncomm::QNCommWidget* control;
    QWidget* other; ///< takes the focus and does nothing
};

struct FloodResult {
    double seconds = 0;
    double longestMs = 0;
    int clicks = 0;
};

/// The port is opened to a printer that talks at once; ends when the last byte is in the grid.
FloodResult FloodControl(const std::string& text) {
    Shown shown(text);
    const qncomm::Terminal& grid = shown.control->assembly().Grid();
    QEventLoop loop;
    while (grid.ScrollbackEnd() == 0)
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    const Clicked clicks;
    const auto start = Clock::now();
    while (!HasLastLine(grid))
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    return {SecondsSince(start), clicks.LongestMs(), clicks.Count()};
}

/// The same text given to the shown terminal itself, a piece in each turn of the reactor.
double ViewSeconds(const std::string& text) {
    Shown shown({});
    qncomm::ControlAssembly& parts = shown.control->assembly();
    qncomm::QtReactor& reactor = qncomm::QtReactor::OfApplication();
    QEventLoop loop;
    while (!parts.Serial().PortOpen())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    std::string_view left = text;
    std::unique_ptr<qncomm::Alarm> alarm;
    alarm = reactor.CreateAlarm([&] {
        parts.Viewport().Show(left.substr(0, PieceBytes));
        left.remove_prefix(std::min(PieceBytes, left.size()));
        if (!left.empty()) alarm->SetDue(reactor.NowUs());
    });
    const auto start = Clock::now();
    alarm->SetDue(reactor.NowUs());
    while (!left.empty())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    return SecondsSince(start);
}

void MeasureFlood() {
    const std::string text = Flood();
    double grid = 1e9;
    double view = 1e9;
    double faceless = 1e9;
    FloodResult best{1e9, 0, 0};
    double longest = 0;
    for (int turn = 0; turn < Turns; ++turn) {
        grid = std::min(grid, GridSeconds(text));
        view = std::min(view, ViewSeconds(text));
        faceless = std::min(faceless, FacelessSeconds(text));
        const FloodResult result = FloodControl(text);
        longest = std::max(longest, result.longestMs);
        if (result.seconds < best.seconds) best = result;
    }
    const double megabytes = static_cast<double>(text.size()) / 1e6;
    std::printf("A flood of %.0f MB of text (best of %d turns)\n", megabytes, Turns);
    std::printf("  grid alone               %7.1f MB/s\n", megabytes / grid);
    std::printf("  grid in a shown control  %7.1f MB/s   %.2f of the grid\n", megabytes / view,
                grid / view);
    std::printf("  line and link, no face   %7.1f MB/s   %.2f of the grid\n", megabytes / faceless,
                grid / faceless);
    std::printf("  line and link, shown     %7.1f MB/s   %.2f of the grid, %.2f of no face\n",
                megabytes / best.seconds, grid / best.seconds, faceless / best.seconds);
    std::printf("  longest wait of a click  %7.1f ms     (%d clicks in the best turn)\n", longest,
                best.clicks);
}

/// How often a thread of this process went to sleep of its own accord, all of them together.
long Sleeps() {
    std::ifstream status("/proc/self/status");
    std::string word;
    long count = 0;
    while (status >> word)
        if (word == "voluntary_ctxt_switches:") status >> count;
    return count;
}

void MeasureWakes(const char* name, Shown& shown, QWidget& focus) {
    focus.setFocus();
    QElapsedTimer time;
    QEventLoop loop;
    for (time.start(); time.elapsed() < 1000;)
        loop.processEvents(QEventLoop::AllEvents, 10);
    int wakes = 0;
    const auto count =
        QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                         &shown.window, [&] { ++wakes; });
    const long sleeps = Sleeps();
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
    end.start(WatchMs);
    loop.exec();
    QObject::disconnect(count);
    // The end of the watch is a wake of its own.
    std::printf("  %-26s %5.1f a second   (the main thread slept %.1f times a second)\n", name,
                (wakes - 1) * 1000.0 / WatchMs,
                static_cast<double>(Sleeps() - sleeps - 1) * 1000.0 / WatchMs);
}

void MeasureIdle() {
    Shown shown({});
    std::printf("\nWakes of a shown, idle control\n");
    MeasureWakes("with the focus", shown, *shown.control);
    MeasureWakes("without the focus", shown, *shown.other);
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    MeasureFlood();
    MeasureIdle();
}

// How long qnterm takes from its start to a window that takes keys, beside an empty Qt window on
// the same display in the same run. A window takes keys when it is shown and its program
// answers the window system's question whether it is alive, which goes through the same loop as
// keys do.
//
//   tests/face/with-display build-bench/bin/qnterm_start_bench

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int Rounds = 21;
constexpr Milliseconds Longest{20000};
constexpr int SmallestWindow = 300; // pixels; smaller ones are helpers of the toolkit

/// The display, listening for windows that come up.
class Display {
  public:
    Display() : mConnection(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
        if (xcb_connection_has_error(mConnection.get()) != 0)
            throw std::runtime_error("there is no display");
        mRoot = xcb_setup_roots_iterator(xcb_get_setup(mConnection.get())).data->root;
        const std::uint32_t events =
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_change_window_attributes(mConnection.get(), mRoot, XCB_CW_EVENT_MASK, &events);
        mProtocols = Atom("WM_PROTOCOLS");
        mPing = Atom("_NET_WM_PING");
        xcb_flush(mConnection.get());
    }

    /// Waits until a window is shown and answers. False when that takes too long.
    bool AwaitWindow() {
        const auto end = Clock::now() + Longest;
        xcb_window_t window = XCB_NONE;
        while (Clock::now() < end) {
            const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(
                xcb_wait_for_event(mConnection.get()), &std::free);
            if (!event) return false;
            switch (event->response_type & 0x7FU) {
            case XCB_MAP_REQUEST:
                Map(reinterpret_cast<xcb_map_request_event_t*>(event.get())->window);
                break;
            case XCB_CONFIGURE_REQUEST:
                Configure(*reinterpret_cast<xcb_configure_request_event_t*>(event.get()));
                break;
            case XCB_MAP_NOTIFY:
                window = reinterpret_cast<xcb_map_notify_event_t*>(event.get())->window;
                if (IsLarge(window)) Ask(window);
                break;
            case XCB_CLIENT_MESSAGE:
                if (IsAnswer(*reinterpret_cast<xcb_client_message_event_t*>(event.get())))
                    return true;
                break;
            default:
                break;
            }
        }
        return false;
    }

    /// Forgets what is still under way of a program that has ended.
    void Drain() {
        Synchronise();
        while (auto* event = xcb_poll_for_event(mConnection.get()))
            std::free(event);
    }

  private:
    xcb_atom_t Atom(const std::string& name) {
        const auto cookie = xcb_intern_atom(mConnection.get(), 0,
                                            static_cast<std::uint16_t>(name.size()), name.c_str());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(mConnection.get(), cookie, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    void Synchronise() {
        std::free(xcb_get_input_focus_reply(mConnection.get(),
                                            xcb_get_input_focus(mConnection.get()), nullptr));
    }

    void Map(xcb_window_t window) {
        xcb_map_window(mConnection.get(), window);
        xcb_flush(mConnection.get());
    }

    void Configure(const xcb_configure_request_event_t& wanted) {
        const std::array<std::uint32_t, 4> values{static_cast<std::uint32_t>(wanted.x),
                                                  static_cast<std::uint32_t>(wanted.y),
                                                  wanted.width, wanted.height};
        xcb_configure_window(mConnection.get(), wanted.window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
                                 | XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
        xcb_flush(mConnection.get());
    }

    bool IsLarge(xcb_window_t window) {
        const std::unique_ptr<xcb_get_geometry_reply_t, decltype(&std::free)> place(
            xcb_get_geometry_reply(mConnection.get(), xcb_get_geometry(mConnection.get(), window),
                                   nullptr),
            &std::free);
        return place && place->width >= SmallestWindow && place->height >= SmallestWindow;
    }

    void Ask(xcb_window_t window) {
        xcb_client_message_event_t question{};
        question.response_type = XCB_CLIENT_MESSAGE;
        question.format = 32;
        question.window = window;
        question.type = mProtocols;
        question.data.data32[0] = mPing;
        question.data.data32[1] = XCB_CURRENT_TIME;
        question.data.data32[2] = window;
        xcb_send_event(mConnection.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&question));
        xcb_flush(mConnection.get());
    }

    bool IsAnswer(const xcb_client_message_event_t& message) const {
        return message.type == mProtocols && message.data.data32[0] == mPing
               && message.window == mRoot;
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> mConnection;
    xcb_window_t mRoot = XCB_NONE;
    xcb_atom_t mProtocols = XCB_ATOM_NONE;
    xcb_atom_t mPing = XCB_ATOM_NONE;
};

/// Starts the program, waits for its window, ends it. The milliseconds from start to window.
double Measure(Display& display, const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& part : command)
        arguments.push_back(const_cast<char*>(part.c_str()));
    arguments.push_back(nullptr);
    const auto start = Clock::now();
    pid_t child = 0;
    if (posix_spawn(&child, command.front().c_str(), nullptr, nullptr, arguments.data(), environ)
        != 0)
        throw std::runtime_error(command.front() + " does not start");
    const bool shown = display.AwaitWindow();
    const double took = Milliseconds(Clock::now() - start).count();
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    display.Drain();
    if (!shown) throw std::runtime_error(command.front() + " shows no window");
    return took;
}

/// The quickest start is what the program needs; whatever else the machine does only adds to it.
double Least(const std::vector<double>& values) {
    return *std::ranges::min_element(values);
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

int Run() {
    const std::string settings = std::filesystem::temp_directory_path() / "qnterm-start-bench.ini";
    std::filesystem::remove(settings);
    const std::vector<std::string> ours{QN_TERM, "--port", "sim:R7G", "--settings", settings};
    const std::vector<std::string> empty{QN_EMPTY};
    Display display;
    std::vector<double> emptyTimes;
    std::vector<double> ourTimes;
    for (int round = 0; round < Rounds; ++round) {
        emptyTimes.push_back(Measure(display, empty));
        ourTimes.push_back(Measure(display, ours));
    }
    std::filesystem::remove(settings);
    std::printf("start to a window that takes keys, %d starts each   least    median\n", Rounds);
    std::printf("  an empty Qt window                        %7.1f ms %7.1f ms\n",
                Least(emptyTimes), Median(emptyTimes));
    std::printf("  qnterm                                    %7.1f ms %7.1f ms\n", Least(ourTimes),
                Median(ourTimes));
    std::printf("  times as long                             %7.2f    %7.2f\n",
                Least(ourTimes) / Least(emptyTimes), Median(ourTimes) / Median(emptyTimes));
    return 0;
}

} // namespace

int main() {
    try {
        return Run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qnterm_start_bench: %s\n", error.what());
        return 1;
    }
}

// How long the search takes beside the waits that it cannot do without.

#include "platform/PollLoop.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/Stack.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace qncomm {
namespace {

constexpr int Runs = 5;
constexpr double SilencePerCombination = 50; // ms
constexpr int Combinations = 28;

/// A pseudo-terminal at whose end nobody answers.
class SilentLine {
  public:
    SilentLine() : mMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (mMaster < 0 || ::grantpt(mMaster) != 0 || ::unlockpt(mMaster) != 0)
            throw std::runtime_error("no pseudo-terminal");
        mHolder =
            ::open(Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); // outlives the search's closings
        termios raw{};
        ::tcgetattr(mHolder, &raw);
        ::cfmakeraw(&raw); // no echo of its own
        ::tcsetattr(mHolder, TCSANOW, &raw);
    }
    ~SilentLine() {
        ::close(mHolder);
        ::close(mMaster);
    }
    SilentLine(const SilentLine&) = delete;
    SilentLine& operator=(const SilentLine&) = delete;

    std::string Path() const {
        char name[64];
        if (::ptsname_r(mMaster, name, sizeof name) != 0) throw std::runtime_error("no name");
        return name;
    }

  private:
    int mMaster;
    int mHolder = -1;
};

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + std::ssize(values) / 2, values.end());
    return values[values.size() / 2];
}

double SilentSearchMs() {
    PollLoop loop;
    const SilentLine line;
    testing::Stack stack(loop, line.Path());
    const std::int64_t start = loop.NowUs();
    if (stack.mLink.AutoConnect(1)) throw std::runtime_error("found a printer where none is");
    return static_cast<double>(loop.NowUs() - start) / 1000;
}

struct Remembered {
    double answered; ///< from the probe to the printer's answer
    double whole;    ///< to the end of the search
};

Remembered RememberedSearchMs() {
    PollLoop loop;
    const auto printer = testing::PrinterOnPty("R7G?baud=57600&format=n,8,2");
    testing::Stack stack(loop, printer->Address());
    if (!stack.mLink.AutoConnect(1)) throw std::runtime_error("no printer found");
    std::int64_t probed = 0;
    std::int64_t answered = 0;
    const Subscription follow =
        stack.mLink.StatusEvent.Connect([&](std::string& text, std::int16_t&, bool&) {
            if (text.starts_with("Searching")) probed = loop.NowUs();
            if (text.starts_with("Reading")) answered = loop.NowUs();
        });
    const std::int64_t start = loop.NowUs();
    if (!stack.mLink.AutoConnect(1)) throw std::runtime_error("no printer found");
    const auto ms = [](std::int64_t from, std::int64_t to) {
        return static_cast<double>(to - from) / 1000;
    };
    return {ms(probed, answered), ms(start, loop.NowUs())};
}

/// What a program keeps of a printer at this rate.
std::vector<SettingValue> KeptAt(const std::string& rate) {
    const std::string section = ConnectionSection("COM1");
    return {{section, "Baudrate", rate},   {section, "Parity", "None"},
            {section, "Databits", "8"},    {section, "Stopbits", "2"},
            {section, "FlowControl", "0"}, {section, "Channel", "1"},
            {section, "Model", "R7G"},     {section, "Firmware", "Quorin 8.30"}};
}

/// The first claim of a program that holds this, of a printer at 57600 baud.
double FirstClaimMs(const std::vector<SettingValue>& kept) {
    PollLoop loop;
    const auto printer = testing::PrinterOnPty("R7G?baud=57600&format=n,8,2");
    testing::Stack stack(loop, printer->Address(), kept, {.remembered = true});
    const std::int64_t start = loop.NowUs();
    if (!stack.mLink.AcquirePort()) throw std::runtime_error("no printer found");
    return static_cast<double>(loop.NowUs() - start) / 1000;
}

/// The first claims of programs, in ms.
struct FirstClaims {
    std::vector<double> unknown; ///< that have never met the printer
    std::vector<double> met;     ///< that have
    std::vector<double> changed; ///< that have met it at another rate

    void Run() {
        unknown.push_back(FirstClaimMs({}));
        met.push_back(FirstClaimMs(KeptAt("57600")));
        changed.push_back(FirstClaimMs(KeptAt("9600")));
    }

    void Print() const {
        std::printf("first claim, searched        median %8.1f ms\n", Median(unknown));
        std::printf(
            "first claim, remembered      median %8.1f ms   with 5 ms of listening (at most "
            "15)\n",
            Median(met));
        std::printf(
            "the same at another rate     median %8.1f ms more than searched (at most 150)\n",
            Median(changed) - Median(unknown));
    }
};

int Main() {
    FirstClaims claims;
    std::vector<double> silent;
    std::vector<double> answered;
    std::vector<double> whole;
    for (int run = 0; run < Runs; ++run) {
        silent.push_back(SilentSearchMs());
        const Remembered remembered = RememberedSearchMs();
        answered.push_back(remembered.answered);
        whole.push_back(remembered.whole);
        claims.Run();
    }
    const double waits = Combinations * SilencePerCombination;
    std::printf("no printer, %d combinations   median %8.1f ms   %.3f x the %.0f ms of waits (at "
                "most 1.15)\n",
                Combinations, Median(silent), Median(silent) / waits, waits);
    std::printf("remembered, probe to answer  median %8.1f ms   with the channel's identification "
                "(at most 100)\n",
                Median(answered));
    std::printf("remembered, whole search     median %8.1f ms   with 100 ms of silence before it\n",
                Median(whole));
    claims.Print();
    return 0;
}

} // namespace
} // namespace qncomm

int main() {
    return qncomm::Main();
}

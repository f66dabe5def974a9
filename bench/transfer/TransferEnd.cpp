// One end of a transfer on standard input and output:
//   transfer_end zmodem|kermit send FILE…      transfer_end zmodem|kermit receive
// with options before the files: -8 (8 KiB subpackets), --prefix all|cautious|least, --length N,
// --window N, --check N, --reliable (Kermit may stream). It ends with 0 when every file travelled
// whole, and says on standard error how much memory it had at most.

#include "HostFiles.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace {

namespace bench = qncomm::bench;
namespace transfer = qncomm::transfer;
using transfer::Time;

struct Arguments {
    std::string protocol;
    bool send = false;
    transfer::ZModemSenderOptions zmodem;
    transfer::KermitOptions kermit;
    std::vector<std::string> files;
};

transfer::KermitPrefixing Prefixing(const std::string& word) {
    if (word == "least") return transfer::KermitPrefixing::Least;
    return word == "all" ? transfer::KermitPrefixing::All : transfer::KermitPrefixing::Cautious;
}

Arguments Parse(const std::vector<std::string>& words) {
    Arguments arguments;
    arguments.protocol = words.at(0);
    arguments.send = words.at(1) == "send";
    for (std::size_t i = 2; i < words.size(); ++i) {
        if (words[i] == "-8") {
            arguments.zmodem.subpacket = 8192;
        } else if (words[i] == "--prefix") {
            arguments.kermit.prefixing = Prefixing(words.at(++i));
        } else if (words[i] == "--length") {
            arguments.kermit.packet = std::stoul(words.at(++i));
        } else if (words[i] == "--window") {
            arguments.kermit.window = static_cast<unsigned>(std::stoul(words.at(++i)));
        } else if (words[i] == "--reliable") {
            arguments.kermit.reliable = true;
        } else if (words[i] == "--check") {
            arguments.kermit.check = static_cast<unsigned>(std::stoul(words.at(++i)));
        } else {
            arguments.files.push_back(words[i]);
        }
    }
    return arguments;
}

std::unique_ptr<transfer::TransferEngine> MakeEngine(const Arguments& arguments) {
    if (arguments.protocol == "zmodem") {
        if (arguments.send) return std::make_unique<transfer::ZModemSender>(arguments.zmodem);
        return std::make_unique<transfer::ZModemReceiver>();
    }
    if (arguments.send) return std::make_unique<transfer::KermitSender>(arguments.kermit);
    return std::make_unique<transfer::KermitReceiver>(arguments.kermit);
}

Time Now() {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

void PrepareLine() {
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) == 0) {
        cfmakeraw(&settings);
        settings.c_cc[VMIN] = 1;
        settings.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    }
    fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);
    fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
}

void WaitForLine(const transfer::TransferEngine& engine, bool bWrite) {
    std::array<pollfd, 2> ready{{{STDIN_FILENO, POLLIN, 0}, {STDOUT_FILENO, POLLOUT, 0}}};
    std::int64_t wait = -1;
    if (const auto due = engine.NextDeadline()) {
        wait =
            std::chrono::ceil<std::chrono::milliseconds>(std::max(*due - Now(), Time{0})).count();
    }
    poll(ready.data(), bWrite ? 2 : 1, static_cast<int>(wait));
}

// KiB of this program alone: what a process may have had before it became this one is not counted.
unsigned long PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        unsigned long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return 0;
}

int Run(const Arguments& arguments) {
    const auto engine = MakeEngine(arguments);
    bench::HostSource source(arguments.files);
    bench::HostSink sink;
    bench::HostSource* from = arguments.send ? &source : nullptr;
    bench::HostSink* to = arguments.send ? nullptr : &sink;
    std::array<char, 65536> buffer{};
    engine->Start(Now());
    while (!engine->IsOver()) {
        const Time now = Now();
        const ssize_t got = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (got > 0) engine->Receive({buffer.data(), static_cast<std::size_t>(got)}, now);
        if (got == 0) break;
        if (const auto due = engine->NextDeadline(); due && *due <= now) engine->Tick(now);
        const auto output = transfer::ServedOutput(*engine, from, to, now);
        const ssize_t sent =
            output.empty() ? 0 : write(STDOUT_FILENO, output.data(), output.size());
        if (sent > 0) engine->Sent(static_cast<std::size_t>(sent), Now());
        if (got <= 0 && sent <= 0 && !engine->IsOver()) WaitForLine(*engine, !output.empty());
    }
    const auto& progress = engine->Progress();
    std::cerr << "memory " << PeakMemory() << " KiB, files " << progress.files << ", repairs "
              << progress.repairs << ' ' << engine->Reason() << '\n';
    return engine->Outcome() == transfer::Outcome::Success ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const Arguments arguments = Parse({argv + 1, argv + argc});
        PrepareLine();
        return Run(arguments);
    } catch (const std::exception& error) {
        std::cerr << "usage: transfer_end zmodem|kermit send|receive [options] [FILE…] ("
                  << error.what() << ")\n";
        return 2;
    }
}

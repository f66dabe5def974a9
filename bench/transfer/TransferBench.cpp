// Measures transfers between two programs over a relay that paces, delays and damages bytes:
//   transfer_bench [--end PATH] [--runs N] [--seed N] ROW…
// A row is a name of the table below, or "all"; each has its number of runs unless one is given.
// Each line of the result is one run: the share of the line's rate that the file travelled with,
// whether it arrived identical, how long the end of the session took, how much memory the two ends
// had at most. Several runs are summed up in one more line.

#include "Relay.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace bench = qncomm::bench;
using qncomm::testing::LineSettings;
using qncomm::testing::PeerProcess;
using Words = std::vector<std::string>;

enum class Content {
    Random,
    Text,
};

struct Row {
    std::string name;
    Words sender; // END stands for this project's end, FILE for the file
    Words receiver;
    std::size_t size;
    Content content;
    double rate;   // bytes per second, 0: unpaced
    double delay;  // seconds each way
    double damage; // flips per byte, both ways
    unsigned long runs = 1;
};

constexpr std::size_t Mega = 1U << 20U;
constexpr double Baud115200 = 11520;
constexpr double Most = 1800; // seconds that a run may take

const Words kZSend = {"END", "zmodem", "send", "FILE"};
const Words kZSend8 = {"END", "zmodem", "send", "-8", "FILE"};
const Words kZReceive = {"END", "zmodem", "receive"};
const Words kKSend = {"END", "kermit", "send", "FILE"};
const Words kKLeast = {"END", "kermit", "send", "--prefix", "least", "FILE"};
const Words kKStream = {"END", "kermit", "send", "--reliable", "--prefix", "least", "FILE"};
const Words kKStreamReceive = {"END", "kermit", "receive", "--reliable"};
const Words kKReceive = {"END", "kermit", "receive"};
const Words Sz = {"sz", "-b", "-q", "FILE"};
const Words Sz8 = {"sz", "-b", "-q", "-8", "FILE"};
const Words Rz = {"rz", "-b", "-q", "-y"};

Words CKermit(const std::string& settings, const std::string& action) {
    return {"kermit", "-Y", "-q", "-C",
            "set file type binary, set transfer mode manual, set file collision overwrite, "
                + settings + action + ", exit"};
}

std::vector<Row> Rows() {
    const Words ckSend = CKermit("", "send FILE");
    const Words ckReceive = CKermit("", "receive");
    const Words ckFast = CKermit("fast, set prefixing minimal, ", "send FILE");
    const Words ckFastReceive = CKermit("fast, ", "receive");
    return {
        {"z-random", kZSend, kZReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"z-random-8k", kZSend8, kZReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"z-text", kZSend, kZReceive, Mega, Content::Text, Baud115200, 0, 0},
        {"z-damage-4", kZSend, kZReceive, Mega, Content::Random, Baud115200, 0, 1e-4, 5},
        {"z-damage-3", kZSend, kZReceive, Mega, Content::Random, Baud115200, 0, 1e-3, 5},
        {"z-ends", kZSend, kZReceive, 1000, Content::Random, 0, 0, 0, 1000},
        {"z-memory-1", kZSend, kZReceive, Mega, Content::Random, 0, 0, 0},
        {"z-memory-32", kZSend, kZReceive, 32 * Mega, Content::Random, 0, 0, 0},
        {"z-to-rz", kZSend, Rz, Mega, Content::Random, Baud115200, 0, 0},
        {"z-from-sz", Sz, kZReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"z-fast", kZSend, kZReceive, 16 * Mega, Content::Random, 0, 0, 0},
        {"z-fast-8k", kZSend8, kZReceive, 16 * Mega, Content::Random, 0, 0, 0},
        {"k-random", kKSend, kKReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"k-least", kKLeast, kKReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"k-delay", kKSend, kKReceive, Mega, Content::Random, Baud115200, 0.025, 0},
        {"k-damage-4", kKSend, kKReceive, Mega, Content::Random, Baud115200, 0, 1e-4, 5},
        {"k-damage-3", kKSend, kKReceive, Mega, Content::Random, Baud115200, 0, 1e-3, 5},
        {"k-stream", kKStream, kKStreamReceive, 16 * Mega, Content::Random, 0, 0, 0},
        {"k-memory-1", kKSend, kKReceive, Mega, Content::Random, 0, 0, 0},
        {"k-memory-32", kKSend, kKReceive, 32 * Mega, Content::Random, 0, 0, 0},
        {"k-fast", kKLeast, kKReceive, 16 * Mega, Content::Random, 0, 0, 0},
        {"peer-z-random", Sz, Rz, Mega, Content::Random, Baud115200, 0, 0},
        {"peer-z-fast", Sz, Rz, 16 * Mega, Content::Random, 0, 0, 0},
        {"peer-z-fast-8k", Sz8, Rz, 16 * Mega, Content::Random, 0, 0, 0},
        {"peer-k-random", ckSend, ckReceive, Mega, Content::Random, Baud115200, 0, 0},
        {"peer-k-fast", ckFast, ckFastReceive, 16 * Mega, Content::Random, 0, 0, 0},
    };
}

std::string MakeContent(Content kind, std::size_t size, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::string bytes;
    bytes.reserve(size);
    while (bytes.size() < size) {
        const auto value = random();
        if (kind == Content::Random) {
            bytes.push_back(static_cast<char>(value >> 56U));
        } else {
            bytes.push_back(bytes.size() % 64 == 63 ? '\n' : static_cast<char>('a' + value % 26));
        }
    }
    return bytes;
}

Words Fill(Words words, const std::string& end) {
    for (auto& word : words) {
        if (word == "END") word = end;
        if (const auto at = word.find("FILE"); at != std::string::npos)
            word.replace(at, 4, "bench.bin");
    }
    return words;
}

std::string Slurp(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// What an end of ours says of its memory; a program that says nothing has 0.
unsigned long PeakOf(const std::filesystem::path& folder) {
    const std::string log = Slurp(folder / "log");
    const auto at = log.find("memory ");
    return at == std::string::npos ? 0 : std::stoul(log.substr(at + 7));
}

struct Run {
    bool good = false;
    double speed = 0; // % of the line, MB/s where it has no rate
    double end = 0;   // seconds
};

// All runs of a row in one line.
bool SumUp(const std::string& name, const std::vector<Run>& runs) {
    Run sum;
    std::size_t good = 0;
    for (const Run& run : runs) {
        good += run.good ? 1 : 0;
        sum.speed += run.speed / static_cast<double>(runs.size());
        sum.end = std::max(sum.end, run.end);
    }
    if (runs.size() > 1)
        std::cout << name << ": " << good << " of " << runs.size()
                  << " complete and identical, mean " << sum.speed << ", slowest end " << sum.end
                  << " s" << std::endl;
    return good == runs.size();
}

Run RunRow(const Row& row, const std::string& end, std::uint64_t seed) {
    namespace fs = std::filesystem;
    const fs::path base =
        fs::temp_directory_path() / ("bench-" + row.name + "-" + std::to_string(seed));
    fs::remove_all(base);
    fs::create_directories(base / "from");
    fs::create_directories(base / "to");
    const std::string content = MakeContent(row.content, row.size, seed);
    std::ofstream(base / "from" / "bench.bin", std::ios::binary) << content;

    LineSettings line;
    line.rate = row.rate;
    line.latency = std::chrono::microseconds(static_cast<long>(row.delay * 1e6));
    line.faults.flip = row.damage;
    line.buffer = row.rate > 0 ? 4096 : 65536;
    PeerProcess receiver(Fill(row.receiver, end), (base / "to").string());
    PeerProcess sender(Fill(row.sender, end), (base / "from").string());
    const auto result = bench::RunRelay(sender, receiver, line, seed, Most);
    const bool whole = Slurp(base / "to" / "bench.bin") == content;
    // A program that stalls at the end of its session is measured without the stall, which stands
    // beside it.
    const double rate = static_cast<double>(row.size) / result.dataSeconds;
    std::cout << row.name << ": " << (whole ? "identical" : "NOT IDENTICAL")
              << (result.bothEnded ? "" : ", did not end") << ", status " << sender.Status() << '/'
              << receiver.Status() << ", " << result.seconds << " s, ";
    const double speed = row.rate > 0 ? 100 * rate / row.rate : rate * 1e-6;
    if (row.rate > 0) {
        const double busy = static_cast<double>(result.carried) / row.rate / result.seconds;
        std::cout << speed << " % of the line (busy " << 100 * busy << " %)";
    } else {
        std::cout << speed << " MB/s";
    }
    std::cout << ", faults " << result.faults << ", end " << result.seconds - result.dataSeconds
              << " s, memory " << PeakOf(base / "from") << '/' << PeakOf(base / "to") << " KiB"
              << std::endl;
    fs::remove_all(base);
    return {whole && result.bothEnded, speed, result.seconds - result.dataSeconds};
}

} // namespace

int main(int argc, char** argv) {
    const Words words(argv + 1, argv + argc);
    std::string end = (std::filesystem::absolute(argv[0]).parent_path() / "transfer_end").string();
    unsigned long wantedRuns = 0;
    unsigned long seed = 1;
    Words names;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--end" && i + 1 < words.size()) {
            end = words[++i];
        } else if (words[i] == "--runs" && i + 1 < words.size()) {
            wantedRuns = std::stoul(words[++i]);
        } else if (words[i] == "--seed" && i + 1 < words.size()) {
            seed = std::stoul(words[++i]);
        } else {
            names.push_back(words[i]);
        }
    }
    bool good = !names.empty();
    for (const auto& row : Rows()) {
        const bool wanted = std::find(names.begin(), names.end(), row.name) != names.end();
        if (!wanted && names != Words{"all"}) continue;
        std::vector<Run> runs;
        while (runs.size() < (wantedRuns != 0 ? wantedRuns : row.runs))
            runs.push_back(RunRow(row, end, seed + runs.size()));
        good = SumUp(row.name, runs) && good;
    }
    return good ? 0 : 1;
}

#include "TerminalStreams.h"

#include <functional>
#include <random>
#include <utility>

namespace qncomm::bench {
namespace {

constexpr std::size_t StreamBytes = 4'000'000;

std::mt19937& Random() {
    static std::mt19937 random(42);
    return random;
}

std::string Word() {
    std::string word(1 + Random()() % 9, ' ');
    for (char& letter : word)
        letter = static_cast<char>('a' + Random()() % 26);
    return word;
}

/// Pieces that make gives, until the stream is long enough.
std::string Stream(const std::function<std::string()>& make) {
    std::string stream;
    while (stream.size() < StreamBytes)
        stream += make();
    return stream;
}

std::string PlainLine() {
    std::string line;
    const std::size_t length = 20 + Random()() % 59;
    while (line.size() < length)
        line += Word() + ' ';
    line.resize(length);
    return line + "\r\n";
}

std::string ColouredLine() {
    std::string line;
    for (int word = 0; word < 10; ++word)
        line += "\x1B[" + std::to_string(Random()() % 2) + ";3" + std::to_string(Random()() % 8)
                + "m" + Word() + ' ';
    return line + "\x1B[m\r\n";
}

std::string DirectColour() {
    std::string sequence = "\x1B[38;2";
    for (int part = 0; part < 3; ++part)
        sequence += ';' + std::to_string(Random()() % 256);
    return sequence + "mx";
}

std::string DenseSequence() {
    const auto number = [] { return std::to_string(1 + Random()() % 24); };
    switch (Random()() % 8) {
    case 0:
        return "\x1B[" + number() + ";" + number() + "H" + Word();
    case 1:
        return "\x1B[K";
    case 2:
        return "\x1B[1;3" + std::to_string(Random()() % 8) + "m";
    case 3:
        return "\x1B[" + number() + "C";
    case 4:
        return "\x1B[" + number() + "A";
    case 5:
        return "\x1B[" + number() + "P" + Word();
    case 6:
        return "\x1B[" + number() + "@";
    default:
        return "\r\n" + Word();
    }
}

} // namespace

std::vector<Workload> Workloads() {
    const auto repeated = [](std::string piece) { return Stream([piece] { return piece; }); };
    const auto anyByte = [] { return std::string(1, static_cast<char>(Random()() % 256)); };
    std::vector<Workload> workloads;
    workloads.push_back({"plain text", Stream(PlainLine)});
    workloads.push_back({"a colour for each word", Stream(ColouredLine)});
    workloads.push_back({"an RGB colour for each cell", Stream(DirectColour)});
    workloads.push_back({"dense sequences", Stream(DenseSequence)});
    workloads.push_back({"line feeds alone", repeated("\n")});
    workloads.push_back({"line feeds between margins", "\x1B[2;20r\x1B[20;1H" + repeated("\n")});
    workloads.push_back({"random bytes", Stream(anyByte)});
    workloads.push_back({"ESC [ 2 J", repeated("\x1B[2J")});
    workloads.push_back({"x ESC [ 999999999 b", repeated("x\x1B[999999999b")});
    workloads.push_back({"ESC [ 999999999 S", repeated("\x1B[999999999S")});
    return workloads;
}

} // namespace qncomm::bench

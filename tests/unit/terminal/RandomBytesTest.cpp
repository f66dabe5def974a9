#include "Snapshot.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using qncomm::Terminal;
using qncomm::testing::Flaw;
using qncomm::testing::TakeSnapshot;

/// Bytes that reach deep: half of them out of what sequences are made of.
std::string Noise(std::mt19937& random, std::size_t length) {
    static constexpr std::string_view Likely =
        "\x1B[\x1B[;:?!0123456789;HJKLMPSTX@ABCDbrhlm\r\n\t\b";
    std::string noise(length, ' ');
    for (char& byte : noise)
        byte = random() % 2 == 0 ? Likely[random() % Likely.size()]
                                 : static_cast<char>(random() % 256);
    return noise;
}

Terminal::Options SizeOf(std::mt19937& random) {
    const auto rows = static_cast<std::int16_t>(1 + random() % 30);
    const auto columns = static_cast<std::int16_t>(1 + random() % 40);
    return qncomm::testing::Sized(rows, columns, 1 + random() % 20);
}

TEST(RandomBytes, LeaveATerminalThatHangsTogether) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        Terminal terminal(SizeOf(random));
        for (int piece = 0; piece < 20; ++piece) {
            terminal.Write(Noise(random, random() % 300));
            ASSERT_EQ(Flaw(terminal), "") << "round " << round << ", piece " << piece;
        }
    }
}

TEST(RandomBytes, AreTheSameWhereverTheyAreCut) {
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        const Terminal::Options options = SizeOf(random);
        const std::string noise = Noise(random, 2'000);
        Terminal whole(options);
        whole.Write(noise);
        Terminal pieces(options);
        for (std::size_t at = 0; at < noise.size();) {
            const std::size_t length = 1 + random() % 7;
            pieces.Write(std::string_view(noise).substr(at, length));
            at += length;
        }
        ASSERT_EQ(TakeSnapshot(pieces), TakeSnapshot(whole)) << "round " << round;
    }
}

TEST(RandomBytes, BetweenResizesLeaveATerminalThatHangsTogether) {
    std::mt19937 random(3);
    Terminal terminal;
    for (int round = 0; round < 300; ++round) {
        terminal.Write(Noise(random, 500));
        const Terminal::Options size = SizeOf(random);
        ASSERT_TRUE(terminal.Resize(size.rows, size.columns));
        ASSERT_EQ(Flaw(terminal), "") << "round " << round;
        terminal.Clear();
        ASSERT_EQ(terminal.ScreenText(), "");
    }
}

} // namespace

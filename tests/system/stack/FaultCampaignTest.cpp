// Damaged lines, by seed: whatever happens to the bytes, an operation ends, raises what it should,
// and leaves nothing claimed.

#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include "common/QNError.h"

#include <gtest/gtest.h>

#include <set>

namespace qncomm::testing {
namespace {

struct Fault {
    const char* name;
    const char* option;
};

class StackFaults : public ::testing::TestWithParam<Fault> {};

/// One session on a damaged line. Returns the error it ended with, 0 for none.
int RunSession(ManualReactor& reactor, Stack& stack) {
    try {
        if (!stack.mLink.AutoConnect(1)) return 0;
        for (int i = 0; i < 20; ++i)
            stack.Ask("PRINT \"" + std::string(60, 'y') + "\"");
    } catch (const QNError& error) {
        return error.Number();
    }
    (void)reactor;
    return 0;
}

TEST_P(StackFaults, EndWithAnErrorThatIsNamedAndNothingClaimed) {
    std::set<int> seen;
    int clean = 0;
    for (int seed = 1; seed <= 40; ++seed) {
        ManualReactor reactor;
        Stack stack(reactor, "sim:R7G?boot-ms=0&" + std::string(GetParam().option)
                                 + ",seed=" + std::to_string(seed));
        const std::int64_t start = reactor.NowMs();
        const int number = RunSession(reactor, stack);
        EXPECT_LE(reactor.NowMs() - start, 100'000) << "seed " << seed;
        EXPECT_EQ(stack.mLink.UseCount(), 0) << "seed " << seed;
        EXPECT_FALSE(stack.mSerial.PortOpen()) << "seed " << seed;
        EXPECT_EQ(stack.mSerial.Tag(), "") << "seed " << seed;
        EXPECT_TRUE(number == 0 || number == 1000 || number == 1007 || number == 1008
                    || number > 60000)
            << number << " with seed " << seed;
        clean += number == 0 ? 1 : 0;
        seen.insert(number);
    }
    EXPECT_LT(clean, 40) << "the fault did nothing";
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, StackFaults,
    ::testing::Values(Fault{"Lost", "lost=0.002"}, Fault{"ManyLost", "lost=0.02"},
                      Fault{"Doubled", "doubled=0.01"}, Fault{"Flipped", "flipped=0.002"},
                      Fault{"ManyFlipped", "flipped=0.02"}, Fault{"Stall", "stall=0.005:3000"}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace qncomm::testing

// Damaged lines, by seed: whatever happens to the bytes, an operation ends, raises what it should,
// and leaves nothing claimed.

#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include "common/QNError.h"

#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

struct Fault {
    const char* name;
    const char* option;
};

class StackFaults : public ::testing::TestWithParam<Fault> {};

struct Session {
    bool found = false; ///< the printer was
    int raised = 0;     ///< the error it ended with, 0 for none
};

/// One session on a damaged line.
Session RunSession(Stack& stack) {
    Session session;
    try {
        session.found = stack.mLink.AutoConnect(1);
        for (int i = 0; session.found && i < 20; ++i)
            stack.Ask("PRINT \"" + std::string(60, 'y') + "\"");
    } catch (const QNError& error) {
        session.raised = error.Number();
    }
    return session;
}

TEST_P(StackFaults, EndWithAnErrorThatIsNamedAndNothingClaimed) {
    int clean = 0;
    for (int seed = 1; seed <= 40; ++seed) {
        ManualReactor reactor;
        Stack stack(reactor, "sim:R7G?boot-ms=0&" + std::string(GetParam().option)
                                 + ",seed=" + std::to_string(seed));
        const std::int64_t start = reactor.NowMs();
        const auto [found, number] = RunSession(stack);
        EXPECT_LE(reactor.NowMs() - start, 100'000) << "seed " << seed;
        EXPECT_EQ(stack.mLink.UseCount(), 0) << "seed " << seed;
        EXPECT_FALSE(stack.mSerial.PortOpen()) << "seed " << seed;
        EXPECT_EQ(stack.mSerial.Tag(), "") << "seed " << seed;
        EXPECT_TRUE(number == 0 || number == 1000 || number == 1007 || number == 1008
                    || number > 60000)
            << number << " with seed " << seed;
        clean += found && number == 0 ? 1 : 0;
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

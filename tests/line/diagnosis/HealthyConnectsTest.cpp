// No alarm without a cause: printers that a search finds, of every model and kind.
#include "Stage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace qncomm::testing {
namespace {

/// A printer of any model, at any settings that a search knows, in any harmless mood.
std::string AnyPrinter(std::mt19937& random) {
    const auto one = [&](std::initializer_list<const char*> of) {
        return std::string(of.begin()[random() % of.size()]);
    };
    std::string printer =
        one({"R7A", "R7B", "R7C", "R7D", "R7E", "R7F", "R7EZV", "R7FZV", "R7G", "R7H"});
    printer += "?baud=" + one({"9600", "19200", "57600", "115200", "38400", "4800", "2400"});
    printer += "&format=" + one({"m,8,2", "n,8,2", "n,7,2", "n,7,1"});
    printer += one({"", "", "&uart=1", "&late-errors=300", "&greeting=At your service.",
                    "&long-setup=on", "&dsr=off", "&noise=1"});
    return printer;
}

TEST(HealthyConnects, AreNeverCalledAnythingElse) {
    const char* const asked = std::getenv("QN_RUNS");
    const int runs = asked != nullptr ? std::atoi(asked) : 300;
    std::mt19937 random(20'260); // NOLINT: the same each time
    for (int run = 0; run < runs; ++run) {
        const std::string printer = AnyPrinter(random);
        const Condition condition{"Healthy", "healthy", InProcess, printer.c_str()};
        const Examined examined = Stage(InProcess, condition).Look();
        ASSERT_EQ(VerdictOf(examined).name, "healthy") << printer << "\n" << Told(examined);
    }
}

} // namespace
} // namespace qncomm::testing

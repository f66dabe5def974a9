// Power that fails between any two statements: whatever the host was doing ends with an error that
// has a name, nothing stays claimed, and the printer that has started again is found.

#include "common/QNError.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gtest/gtest.h>

#include <functional>

namespace qncomm::testing {
namespace {

constexpr int MostStatements = 60;

struct Operation {
    const char* name;
    std::function<void(clsQuorin&)> run;
};

void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

class StackPowerLoss : public ::testing::TestWithParam<Operation> {};

/// The error that it ends with, 0 for none.
int ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const QNError& error) {
        return error.Number();
    }
    return 0;
}

bool IsNamed(int number) {
    return number == 0 || number == 1000 || number == 1007 || number == 1008 || number == 1009
           || number > 60000;
}

TEST_P(StackPowerLoss, EndsTheOperationAndThePrinterIsFoundAgain) {
    int failed = 0;
    for (int after = 1; after <= MostStatements; ++after) {
        SCOPED_TRACE("after " + std::to_string(after) + " statements");
        ManualReactor reactor;
        Stack stack(reactor, "sim:R7G?power-lost-after=" + std::to_string(after));
        clsQuorin quorin(stack.mLink, stack.mDesktop, SystemFiles());
        const int number = ErrorOf([&] { GetParam().run(quorin); });
        failed += number == 0 ? 0 : 1;
        EXPECT_TRUE(IsNamed(number)) << number;
        EXPECT_EQ(stack.mLink.UseCount(), 0);
        EXPECT_FALSE(stack.mSerial.PortOpen());
        EXPECT_EQ(stack.mSerial.Tag(), "");
        // A power that outlasted the operation fails in the search behind it.
        std::vector<std::string> answer;
        for (int searches = 0; searches < 2 && answer.empty(); ++searches) {
            reactor.Pass(10'000);
            stack.mLink.SetImmediateMode(false);
            EXPECT_TRUE(IsNamed(ErrorOf([&] { answer = stack.Ask("PRINT 1"); })));
        }
        EXPECT_EQ(answer, (std::vector<std::string>{"PRINT 1", "1", "Ok"}));
    }
    EXPECT_GT(failed, 0) << "the power never failed in time";
}

INSTANTIATE_TEST_SUITE_P(In, StackPowerLoss,
                         ::testing::Values(Operation{"Listing",
                                                     [](clsQuorin& quorin) {
                                                         std::string device = "c:";
                                                         quorin.Files(device, true);
                                                     }},
                                           Operation{"ModuleUpload",
                                                     [](clsQuorin& quorin) {
                                                         std::string target = "tmp:A.PRG";
                                                         std::string text = "10 PRINT 1\r\n20 END";
                                                         quorin.ModuleUpload("", target, text);
                                                     }},
                                           Operation{"CopyAndKill",
                                                     [](clsQuorin& quorin) {
                                                         quorin.RenameFile("c:PRICES.DAT",
                                                                           "card1:P.DAT");
                                                     }},
                                           Operation{"Setup",
                                                     [](clsQuorin& quorin) { quorin.GetSetup(); }}),
                         [](const auto& operation) { return operation.param.name; });

} // namespace
} // namespace qncomm::testing

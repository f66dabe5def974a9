// The search over a remote serial port, which carries the whole line format: each combination is
// told from every other.
#include "common/Text.h"
#include "platform/PollLoop.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace qncomm::testing {
namespace {

constexpr std::array Formats{"m,8,2", "n,8,2", "n,7,2", "n,7,1"};

using Combination = std::tuple<const char*, const char*>;

class RemoteSearch : public ::testing::TestWithParam<Combination> {};

/// The settings that a search has tried, from its messages.
std::vector<std::string> Tried(const std::vector<std::string>& messages) {
    constexpr std::string_view start = "Searching... ";
    std::vector<std::string> tried;
    for (const std::string& message : messages)
        if (message.starts_with(start)) tried.push_back(message.substr(start.size()));
    return tried;
}

TEST_P(RemoteSearch, FindsThePrinterWhereItIsUnderstoodAndNowhereBefore) {
    const std::string rate = std::get<0>(GetParam());
    const std::string format = std::get<1>(GetParam());
    PollLoop loop;
    const auto printer = PrinterOnRfc2217("R7G?baud=" + rate + "&format=" + format);
    // Its rate is tried first; the formats before it are ones at which it must not be understood,
    // but for the one that differs in the stop bits alone.
    const std::string understood = format == "n,7,1" ? "n,7,2" : format;
    Stack stack(loop, printer->Address(), {{"AutoConnctSettings", "Baud1", rate}});
    ASSERT_TRUE(stack.mLink.AutoConnect(1));
    std::vector<std::string> expected;
    for (const char* const tried : Formats) {
        expected.push_back(rate + "," + tried);
        if (understood == tried) break;
    }
    // Where a busy machine lets the 50 ms of an answer pass, a later format is understood, too.
    std::vector<std::string> tried = Tried(stack.mMessages);
    tried.resize(std::min(tried.size(), expected.size()));
    EXPECT_EQ(tried, expected);
    EXPECT_EQ(LowerCase(stack.mLink.SettingsText()), rate + "," + format);
    EXPECT_EQ(stack.Ask("PRINT 6*7").at(1), "42");
}

INSTANTIATE_TEST_SUITE_P(All, RemoteSearch,
                         ::testing::Combine(::testing::Values("9600", "19200", "57600", "115200",
                                                              "38400", "4800", "2400"),
                                            ::testing::ValuesIn(Formats)),
                         [](const auto& combination) {
                             std::string name = std::string(std::get<0>(combination.param)) + "_"
                                                + std::get<1>(combination.param);
                             std::replace(name.begin(), name.end(), ',', '_');
                             return name;
                         });

TEST(RemoteSearch, GoesThroughAll28InTheirOrderBeforeItGivesUp) {
    PollLoop loop;
    const auto printer = PrinterOnRfc2217("R7G?baud=1200");
    Stack stack(loop, printer->Address());
    ASSERT_FALSE(stack.mLink.AutoConnect(1));
    const std::vector<std::string> tried = Tried(stack.mMessages);
    EXPECT_EQ(tried.size(), 28U);
    EXPECT_EQ(tried.back(), "2400,n,7,1");
}

TEST(RemoteSearch, DsrThatThePrinterDoesNotHoldEndsItBeforeTheFirstProbe) {
    PollLoop loop;
    const auto printer = PrinterOnRfc2217("R7G?dsr=off");
    Stack stack(loop, printer->Address());
    stack.mLink.SetDSRDetectActive(true);
    EXPECT_FALSE(stack.mLink.AutoConnect(1));
    EXPECT_THAT(Tried(stack.mMessages), ::testing::IsEmpty());
}

TEST(RemoteSearch, DsrThatThePrinterHoldsLetsItGoOn) {
    PollLoop loop;
    const auto printer = PrinterOnRfc2217("R7G");
    Stack stack(loop, printer->Address());
    stack.mLink.SetDSRDetectActive(true);
    EXPECT_TRUE(stack.mLink.AutoConnect(1));
}

} // namespace
} // namespace qncomm::testing

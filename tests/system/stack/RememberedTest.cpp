// A printer that another program has met before, on the printer's own language and line.

#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* Section = "Connection COM1";

std::vector<SettingValue> Kept(const std::string& baud, const std::string& parity,
                               const std::string& databits, const std::string& stopbits,
                               const std::string& channel) {
    return {{Section, "Baudrate", baud},     {Section, "Parity", parity},
            {Section, "Databits", databits}, {Section, "Stopbits", stopbits},
            {Section, "FlowControl", "0"},   {Section, "Channel", channel}};
}

/// What a program keeps that finds the printer and asks who it is.
std::vector<SettingValue> KeptOf(const std::string& address) {
    ManualReactor reactor;
    Stack first(reactor, address, {}, {.remembered = true});
    EXPECT_NE(first.mLink.ModelText(), "") << address;
    std::vector<SettingValue> kept;
    for (const char* key : {"Baudrate", "Parity", "Databits", "Stopbits", "FlowControl", "Channel",
                            "Model", "Firmware"})
        kept.push_back({Section, key, first.mSettings->ReadValue(Section, key, "")});
    return kept;
}

class RememberedStack : public ::testing::TestWithParam<const char*> {};

TEST_P(RememberedStack, IsMetByTheNextProgram) {
    const std::string address = GetParam();
    const auto kept = KeptOf(address);
    ManualReactor reactor;
    Stack next(reactor, address, kept, {.remembered = true});
    EXPECT_EQ(next.Ask("PRINT 6*7"), (std::vector<std::string>{"PRINT 6*7", "42", "Ok"}));
    EXPECT_THAT(next.mMessages, ElementsAre(HasSubstr("Printer connected through UART")));
    EXPECT_NE(next.mLink.ModelText(), "");
    EXPECT_EQ(KeptOf(address).back().value, next.mLink.VersionText());
}

INSTANTIATE_TEST_SUITE_P(Models, RememberedStack,
                         ::testing::Values("sim:R7A", "sim:R7B?uart=2", "sim:R7C", "sim:R7D",
                                           "sim:R7E", "sim:R7F", "sim:R7EZV", "sim:R7FZV",
                                           "sim:R7G?uart=3&paced=on",
                                           "sim:R7H?baud=2400&paced=on&format=n,7,1"));

TEST(RememberedStackOnce, AParityThatNoSearchTriesIsMet) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?baud=38400&format=e,7,1", Kept("38400", "Even", "7", "1", "1"),
                {.remembered = true});
    EXPECT_EQ(stack.mLink.ModelText(), "R7G");
    EXPECT_THAT(stack.mMessages, Not(Contains(HasSubstr("Searching"))));
}

TEST(RememberedStackOnce, AnotherPrinterIsToldAndFoundAsItIs) {
    auto kept = KeptOf("sim:R7G");
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7B?uart=2", kept, {.remembered = true});
    EXPECT_EQ(stack.mLink.ModelText(), "R7B");
    EXPECT_EQ(stack.mLink.Stdio(), 2);
    EXPECT_EQ(stack.mMessages.front(),
              "Another channel answers at the remembered settings 9600,n,8,2. Searching...");
    Stack same(reactor, "sim:R7B", kept, {.remembered = true});
    EXPECT_EQ(same.mLink.ModelText(), "R7B");
    EXPECT_EQ(same.mMessages.front(),
              "Another printer answers at the remembered settings 9600,n,8,2. Searching...");
}

TEST(RememberedStackOnce, AHostThatAsksForNothingSearches) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G", Kept("9600", "None", "8", "2", "1"));
    EXPECT_EQ(stack.mLink.ModelText(), "R7G");
    EXPECT_THAT(stack.mMessages, Contains("Searching... 9600,m,8,2"));
    EXPECT_EQ(stack.mSettings->ReadValue(Section, "Model", ""), "");
}

} // namespace
} // namespace qncomm::testing

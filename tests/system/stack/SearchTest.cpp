// The search, proven against the printer's own language and line at every combination.

#include "common/Text.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Combination {
    std::string baud;
    std::string format;
};

std::vector<Combination> AllCombinations() {
    std::vector<Combination> all;
    for (const char* baud : {"9600", "19200", "57600", "115200", "38400", "4800", "2400"})
        for (const char* format : {"m,8,2", "n,8,2", "n,7,2", "n,7,1"})
            all.push_back({baud, format});
    return all;
}

std::string Address(const Combination& combination, const std::string& more = {}) {
    return "sim:R7G?baud=" + combination.baud + "&format=" + combination.format + more;
}

/// The first format at which a printer that is set to this one is understood: a receiver looks at
/// one stop bit, so the two that differ in their number are one.
std::string UnderstoodAt(const std::string& format) {
    return format == "n,7,1" ? "n,7,2" : format;
}

class StackSearch : public ::testing::TestWithParam<Combination> {};

TEST_P(StackSearch, FindsThePrinterAtItsCombinationAndRemembersIt) {
    ManualReactor reactor;
    Stack stack(reactor, Address(GetParam()));
    ASSERT_TRUE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(stack.mLink.Baudrate(), GetParam().baud);
    EXPECT_EQ(stack.mLink.FrameFormats().Item(1), UnderstoodAt(GetParam().format));
    EXPECT_EQ(LowerCase(stack.mLink.SettingsText()), GetParam().baud + "," + GetParam().format);
    EXPECT_EQ(stack.mLink.AutoConnectBaudrates().Item(1), GetParam().baud);
    EXPECT_EQ(stack.mLink.ModelText(), "R7G");
    EXPECT_EQ(stack.Ask("PRINT 6*7"), (std::vector<std::string>{"PRINT 6*7", "42", "Ok"}));
}

TEST_P(StackSearch, FindsThePrinterOnALineThatTakesItsTime) {
    ManualReactor reactor;
    Stack stack(reactor, Address(GetParam(), "&paced=on"));
    ASSERT_TRUE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(stack.mLink.Baudrate(), GetParam().baud);
}

INSTANTIATE_TEST_SUITE_P(All, StackSearch, ::testing::ValuesIn(AllCombinations()),
                         [](const auto& found) {
                             std::string name = found.param.baud + "_" + found.param.format;
                             std::erase(name, ',');
                             return name;
                         });

TEST(StackSearch, TheThirdChannelOfASlowLineIsFound) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?baud=2400&paced=on&uart=3");
    EXPECT_TRUE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(stack.mLink.Stdio(), 3);
}

TEST(StackSearch, APrinterAt57600N82IsTheTenthCombination) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?baud=57600&format=n,8,2");
    ASSERT_TRUE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(std::count_if(stack.mMessages.begin(), stack.mMessages.end(),
                            [](const std::string& text) { return text.starts_with("Searching"); }),
              10);
    EXPECT_EQ(stack.mMessages.back(),
              "Printer connected through UART1: at 57600, None, 8, 2, No Flowcontrol");
}

TEST(StackSearch, EveryChannelIsIdentifiedByTheLanguage) {
    for (int uart = 1; uart <= 3; ++uart) {
        ManualReactor reactor;
        Stack stack(reactor, "sim:R7G?uart=" + std::to_string(uart));
        ASSERT_TRUE(stack.mLink.AutoConnect(1)) << uart;
        EXPECT_EQ(stack.mLink.Stdio(), uart);
        EXPECT_THAT(stack.mMessages.back(),
                    HasSubstr("through UART" + std::to_string(uart) + ": at"));
    }
}

TEST(StackSearch, EveryModelIsFoundAndIdentified) {
    for (const char* model :
         {"R7A", "R7B", "R7C", "R7D", "R7E", "R7F", "R7EZV", "R7FZV", "R7G", "R7H"}) {
        ManualReactor reactor;
        Stack stack(reactor, std::string("sim:") + model);
        EXPECT_EQ(stack.mLink.ModelText(), model);
        EXPECT_EQ(stack.mLink.VersionText().starts_with("Tavrel Protocol V"),
                  std::string(model) == "R7C")
            << stack.mLink.VersionText();
    }
}

TEST(StackSearch, AnUnansweredRateIsSearchedWholeAndPutBack) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?baud=1200");
    const std::int64_t start = reactor.NowMs();
    EXPECT_FALSE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(stack.mMessages.back(), "No Printer found");
    EXPECT_LE(reactor.NowMs() - start, 3 * 28 * 51 + 200) << "noise restarts the silence, but ends";
    EXPECT_EQ(stack.mLink.SettingsText(), "19200,N,8,2");
    EXPECT_FALSE(stack.mSerial.PortOpen());
}

TEST(StackSearch, WithoutDsrNothingIsSent) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?dsr=off");
    stack.mLink.SetDSRDetectActive(true);
    EXPECT_FALSE(stack.mLink.AutoConnect(1));
    EXPECT_THAT(stack.mMessages, ElementsAre("AutoConnect initiate", "No Printer found"));
}

} // namespace
} // namespace qncomm::testing

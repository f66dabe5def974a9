// What a session that broke has left in the printer, and how the next one finds it.

#include "common/QNError.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/core/ScratchFolder.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

// -- A line that was cut

/// A program that dies in the middle of a line at the printer's settings, which are the first that
/// the search tries; what A% is to the next.
std::string AfterACutLine(const LinkOptions& options, const std::vector<SettingValue>& kept = {}) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?format=m,8,2", kept, options);
    stack.mSerial.SetPortNumber(1);
    stack.mSerial.SetPortSettings("9600,m,8,2");
    stack.mSerial.SetPortOpen(true);
    stack.mSerial.Write("A%=5:");
    reactor.Pass(100);
    stack.mSerial.SetPortOpen(false);
    const auto reply = stack.Ask("PRINT A%");
    return reply.size() == 3 ? reply[1] : "no reply";
}

TEST(CutLine, IsCarriedOutByTheSearchAsItIsStated) {
    EXPECT_EQ(AfterACutLine({}), "5");
}

TEST(CutLine, IsNotCarriedOutForAHostThatDistrustsIt) {
    EXPECT_EQ(AfterACutLine({.spoil = true}), "0");
}

TEST(CutLine, IsNotCarriedOutByWhoRemembersThePrinter) {
    const std::vector<SettingValue> kept{
        {"Connection COM1", "Baudrate", "9600"}, {"Connection COM1", "Parity", "Mark"},
        {"Connection COM1", "Databits", "8"},    {"Connection COM1", "Stopbits", "2"},
        {"Connection COM1", "FlowControl", "0"}, {"Connection COM1", "Channel", "1"}};
    EXPECT_EQ(AfterACutLine({.remembered = true, .spoil = true}, kept), "0");
}

TEST(CutLine, IsFoundBehindOnEachRateOfASlowLine) {
    for (const char* rate : {"2400", "4800", "9600", "115200"}) {
        ManualReactor reactor;
        Stack stack(reactor, std::string("sim:R7G?paced=on&baud=") + rate, {}, {.spoil = true});
        EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1") << rate;
    }
}

// -- A load that was cut

struct Cut {
    const char* name;
    std::int32_t afterMs;
    std::int64_t limitMs; ///< from the cut to the printer's prompt
};

class CutLoad : public ::testing::TestWithParam<Cut> {
  protected:
    /// Loads 10,000 bytes, which take 11 s, and has the program end in between.
    std::int64_t LoadAndCancel() {
        bool cancelled = false;
        const auto cut = mReactor.StartTimer(GetParam().afterMs, [&] {
            if (!std::exchange(cancelled, true)) throw OperationCancelled();
        });
        const std::int64_t begun = mReactor.NowMs();
        EXPECT_THROW(mQuorin.Fileload(mPath), OperationCancelled);
        return mReactor.NowMs() - begun - GetParam().afterMs;
    }

    ManualReactor mReactor;
    Stack mStack{mReactor, "sim:R7G?paced=on&baud=9600"};
    clsQuorin mQuorin{mStack.mLink, mStack.mDesktop, SystemFiles()};
    ScratchFolder mFolder;
    const std::string mPath = mFolder.Write("LOAD.BIN", std::string(10'000, 'A'));
};

TEST_P(CutLoad, LeavesThePrinterAtItsPromptAndNoFile) {
    ASSERT_EQ(mStack.mLink.ModelText(), "R7G");
    EXPECT_LE(LoadAndCancel(), GetParam().limitMs);
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_EQ(mStack.mLink.DeafMs(), 0);
    EXPECT_EQ(mStack.Ask("PRINT 1").at(1), "1");
    EXPECT_FALSE(mQuorin.PrinterFileExists("c:LOAD.BIN"));
}

INSTANTIATE_TEST_SUITE_P(Times, CutLoad,
                         ::testing::Values(Cut{"Early", 3000, 9000}, Cut{"Late", 10'500, 3500}),
                         [](const auto& cut) { return cut.param.name; });

// -- A load in which a program has died

struct Death {
    const char* name;
    std::int64_t bytes;
    std::int64_t sent;    ///< of them, when the program died
    std::int32_t laterMs; ///< when the next program comes
    const char* said;     ///< by the next one
    std::int64_t limitMs; ///< from its first claim to the reply
};

class DeathInALoad : public ::testing::TestWithParam<Death> {};

std::vector<SettingValue> KeptAt9600(std::int64_t load) {
    constexpr const char* section = "Connection COM1";
    return {{section, "Baudrate", "9600"},
            {section, "Parity", "None"},
            {section, "Databits", "8"},
            {section, "Stopbits", "2"},
            {section, "FlowControl", "0"},
            {section, "Channel", "1"},
            {section, "Load", std::to_string(load)},
            {section, "LoadUndo", "KILL \"LOAD.BIN\""}};
}

TEST_P(DeathInALoad, IsSeenByTheNextProgramWhichBringsThePrinterBack) {
    const Death& death = GetParam();
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?paced=on&baud=9600", KeptAt9600(death.bytes),
                {.remembered = true, .spoil = true});
    stack.mSerial.SetPortNumber(1);
    stack.mSerial.SetPortSettings("9600,n,8,2");
    stack.mSerial.SetPortOpen(true);
    stack.mSerial.Write("FILE& LOAD \"LOAD.BIN\"," + std::to_string(death.bytes) + "\r"
                        + std::string(static_cast<std::size_t>(death.sent), 'A'));
    while (stack.mSerial.TransmitCount() > 0)
        reactor.Pass(10);
    reactor.Pass(stack.mSerial.LineTimeLeft() + death.laterMs);
    stack.mSerial.SetPortOpen(false);

    const std::int64_t begun = reactor.NowMs();
    EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1");
    EXPECT_LE(reactor.NowMs() - begun, death.limitMs);
    EXPECT_THAT(stack.mMessages.front(), ::testing::HasSubstr(death.said));
    EXPECT_THAT(stack.mMessages,
                ::testing::Not(::testing::Contains(::testing::HasSubstr("Searching"))));
    EXPECT_EQ(stack.mSettings->ReadValue("Connection COM1", "Load", "none"), "");
    clsQuorin quorin(stack.mLink, stack.mDesktop, SystemFiles());
    EXPECT_EQ(quorin.PrinterFileExists("c:LOAD.BIN"), death.bytes == death.sent);
}

INSTANTIATE_TEST_SUITE_P(
    Loads, DeathInALoad,
    ::testing::Values(
        Death{"ThatLacksLittle", 1500, 1000, 100, "A load of 1500 bytes was broken off", 4000},
        Death{"ThatLacksLessThanTheGreeting", 1500, 1490, 100, "Printer connected", 1500},
        Death{"ThatLacksNothing", 1500, 1500, 100, "Printer connected", 1500},
        Death{"ThatLacksMuch", 100'000, 1000, 100, "A load of 100000 bytes was broken off", 8000},
        Death{"ThatThePrinterHasGivenUp", 100'000, 1000, 6000, "Printer connected", 1500}),
    [](const auto& death) { return death.param.name; });

// -- A module that was cut

TEST(CutModule, LeavesThePrinterAtItsPromptInImmediateMode) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?paced=on&baud=2400");
    clsQuorin quorin(stack.mLink, stack.mDesktop, SystemFiles());
    ASSERT_EQ(stack.mLink.ModelText(), "R7G");
    std::string text;
    for (int line = 1; line < 60; ++line)
        text += "PRINT " + std::to_string(line) + "\r\n";
    bool cancelled = false;
    const auto cut = reactor.StartTimer(4000, [&] {
        if (!std::exchange(cancelled, true)) throw OperationCancelled();
    });
    std::string target = "c:CUT.PRG";
    EXPECT_THROW(quorin.ModuleUpload("cut.prg", target, text), OperationCancelled);
    EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1");
}

} // namespace
} // namespace qncomm::testing

// The serial control and qnctl on a 16550 of a machine under qemu: what its registers were told,
// and what a pseudo-terminal cannot show.
#include "GuestTest.h"
#include "testing/line/ServedPrinter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <sstream>

namespace qncomm::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

/// The line control register of a 16550, by its data sheet. The driver sets the bit of even parity
/// without parity too, where it means nothing.
int LineControl(char parity, int dataBits, int stopBits) {
    const int stick = parity == 'M' || parity == 'S' ? 0x20 : 0;
    const int even = parity == 'O' || parity == 'M' ? 0 : 0x10;
    const int enabled = parity == 'N' ? 0 : 0x08;
    return (dataBits - 5) | (stopBits == 2 ? 0x04 : 0) | enabled | even | stick;
}

std::string ExpectedRegisters() {
    std::ostringstream lines;
    for (const int baud : {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200})
        for (const char parity : std::string("NEOMS"))
            for (const int data : {7, 8})
                for (const int stop : {1, 2}) {
                    std::array<char, 80> line{};
                    std::snprintf(line.data(), line.size(), "%d,%c,%d,%d lcr=%02x divisor=%d\n",
                                  baud, parity, data, stop, LineControl(parity, data, stop),
                                  115200 / baud);
                    lines << line.data();
                }
    return lines.str();
}

class Uart : public GuestTest {
  protected:
    /// A printer at the other end of the UART's line.
    void Printer(const std::string& printer) {
        mPrinter = PrinterOnPty(printer);
        TheGuest().ConnectUart(mPrinter->Address());
    }

    std::unique_ptr<ServedPrinter> mPrinter;
};

TEST_F(Uart, EveryRateAndFormatIsWhatItsRegistersSay) {
    const Guest::Ended ended = TheGuest().Run("uart_guest registers /dev/ttyS1 0x2f8");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.text, ExpectedRegisters());
}

TEST_F(Uart, TheSearchFindsThePrinterAtItsRate) {
    for (const auto& [printer, found] :
         {std::pair{"R7G?baud=9600&format=n,8,2", "at 9600,N,8,2"},
          std::pair{"R7A?baud=57600&format=n,8,2", "at 57600,N,8,2"},
          std::pair{"R7C?baud=115200&format=n,8,2", "at 115200,N,8,2"},
          std::pair{"R7H?baud=38400&format=n,8,2", "at 38400,N,8,2"}}) {
        Printer(printer);
        const Guest::Ended ended = TheGuest().Run("qnctl --port /dev/ttyS1 info");
        EXPECT_EQ(ended.status, 0) << printer;
        EXPECT_THAT(ended.text, HasSubstr(found)) << printer;
    }
}

TEST_F(Uart, AFileComesBackAsItWent) {
    Printer("R7G?baud=115200&format=n,8,2");
    const Guest::Ended ended =
        TheGuest().Run("cd /tmp && dd if=/dev/urandom of=there bs=1k count=16 2>/dev/null && "
                       "qnctl --quiet --port /dev/ttyS1 kermit send there c:DATA.BIN && "
                       "qnctl --quiet --port /dev/ttyS1 kermit receive c:DATA.BIN back && "
                       "cmp there back && echo the same");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.text, "the same\n");
}

// One line keeps the printer for longer than its buffer takes what comes behind it.
TEST_F(Uart, XonXoffHoldsAModuleUntilABusyPrinterHasRoom) {
    Printer("R7G?baud=57600&format=n,8,2&paced=on&answer=900:1050");
    const Guest::Ended ended = TheGuest().Run(
        "cd /tmp; for i in $(seq 1001 1200); do echo \"$i REM the longest label of all has many a "
        "line of text\"; done >MODULE.PRG; qnctl --quiet --port /dev/ttyS1 setup set "
        "'SER-COM,UART1,FLOWCONTROL,XON/XOFF,DATA FROM HOST' ENABLE && "
        "qnctl --quiet --port /dev/ttyS1 module upload MODULE.PRG --target c:MODULE.PRG && "
        "qnctl --quiet --port /dev/ttyS1 files c:");
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.text, ContainsRegex("MODULE.PRG +11800"));
}

TEST_F(Uart, ABreakFromTheOtherSideIsCountedAndDisturbsNoReply) {
    Printer("R7G?baud=9600&format=n,8,2");
    const auto breaks = [] {
        const std::string counts = TheGuest().Run("uart_guest counts /dev/ttyS1").text;
        return std::stoi(counts.substr(counts.find("break=") + 6));
    };
    // A UART that is not open hears nothing.
    ASSERT_EQ(TheGuest().Run("sleep 600 </dev/ttyS1 & echo $! >/tmp/sleeper").status, 0);
    const int before = breaks();
    TheGuest().BreakUart();
    EXPECT_EQ(breaks(), before + 1);
    EXPECT_EQ(TheGuest().Run("kill $(cat /tmp/sleeper)").status, 0);
    EXPECT_EQ(TheGuest().Run("qnctl --port /dev/ttyS1 send 'PRINT 1+1'").text, "2\n");
}

TEST_F(Uart, ABreakCanBeSent) {
    Printer("R7G?baud=9600&format=n,8,2");
    const Guest::Ended ended = TheGuest().Run("uart_guest break /dev/ttyS1");
    EXPECT_EQ(ended.status, 0) << ended.text;
    EXPECT_EQ(TheGuest().Run("qnctl --port /dev/ttyS1 send 'PRINT 1+1'").text, "2\n");
}

} // namespace
} // namespace qncomm::testing

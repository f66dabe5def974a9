// A USB adapter that is plugged into the guest, and pulled out in the middle of everything.
#include "GuestTest.h"
#include "Relay.h"
#include "testing/line/ServedPrinter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace qncomm::testing {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

class UsbAdapter : public GuestTest {
  protected:
    UsbAdapter() { TheGuest().PlugIn(mWire.Port()); }
    ~UsbAdapter() override {
        TheGuest().PullOut();
        TheGuest().WaitUntilGone();
    }

    std::unique_ptr<ServedPrinter> mPrinter = PrinterOnTcp("R7G?baud=9600&format=n,8,2");
    Relay mWire{TheGuest().Loop(), mPrinter->Address()};
};

TEST_F(UsbAdapter, IsAmongThePortsWithItsName) {
    EXPECT_THAT(TheGuest().Run("qnctl ports").text, HasSubstr("/dev/ttyUSB0"));
}

TEST_F(UsbAdapter, EverySettingReachesIt) {
    const std::size_t before = TheGuest().DeviceTrace().size();
    const Guest::Ended ended = TheGuest().Run("uart_guest settings /dev/ttyUSB0");
    EXPECT_EQ(ended.status, 0) << ended.text;
    const std::string trace = TheGuest().DeviceTrace().substr(before);
    for (const int baud : {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200})
        EXPECT_THAT(trace, HasSubstr("baud rate " + std::to_string(baud) + "\n")) << baud;
    for (const char parity : std::string("NEO"))
        for (const int data : {7, 8})
            for (const int stop : {1, 2}) {
                std::ostringstream line;
                line << "parity " << parity << ", data bits " << data << ", stop bits " << stop;
                EXPECT_THAT(trace, HasSubstr(line.str()));
            }
}

TEST_F(UsbAdapter, AnswersAsTheUartDoes) {
    EXPECT_EQ(TheGuest().Run("qnctl --port /dev/ttyUSB0 send 'PRINT 1+1'").text, "2\n");
}

struct Operation {
    const char* name;
    const char* command;
    std::size_t step; ///< bytes on the line between one phase and the next
};

class PulledOut : public GuestTest, public ::testing::WithParamInterface<Operation> {};

TEST_P(PulledOut, AtEveryPhaseItIsToldAndTheNextAdapterWorks) {
    Guest& guest = TheGuest();
    ASSERT_EQ(guest.Run("dd if=/dev/urandom of=/tmp/data bs=1k count=4 2>/dev/null").status, 0);
    bool finished = false;
    for (std::size_t phase = 1; !finished && phase <= 5; ++phase) {
        const auto printer = PrinterOnTcp("R7G?baud=9600&format=n,8,2");
        Relay wire(guest.Loop(), printer->Address());
        guest.PlugIn(wire.Port());
        bool pulled = false;
        wire.After(1 + (phase - 1) * GetParam().step, [&] {
            pulled = true;
            guest.PullOut();
        });
        const std::string command = "cd /tmp && timeout 60 qnctl --quiet --port /dev/ttyUSB0 "
                                    + std::string(GetParam().command);
        const Guest::Ended ended = guest.Run(command);
        finished = !pulled;
        if (pulled) {
            EXPECT_THAT(ended.status, AnyOf(1, 3, 4)) << "phase " << phase << ": " << ended.text;
            EXPECT_NE(ended.text, "") << "phase " << phase;
        } else {
            EXPECT_EQ(ended.status, 0) << "phase " << phase << ": " << ended.text;
            guest.PullOut();
        }
        guest.WaitUntilGone();
    }
    const auto printer = PrinterOnTcp("R7G?baud=9600&format=n,8,2");
    Relay wire(guest.Loop(), printer->Address());
    guest.PlugIn(wire.Port());
    EXPECT_EQ(guest.Run("qnctl --port /dev/ttyUSB0 send 'PRINT 1+1'").text, "2\n");
    guest.PullOut();
    guest.WaitUntilGone();
}

INSTANTIATE_TEST_SUITE_P(Operations, PulledOut,
                         ::testing::Values(Operation{"Info", "info", 100},
                                           Operation{"Send", "send 'PRINT 1'", 300},
                                           Operation{"Upload", "kermit send data c:DATA.BIN", 900},
                                           Operation{"Fileload", "fileload data", 900}),
                         [](const auto& operation) { return operation.param.name; });

} // namespace
} // namespace qncomm::testing

// A USB adapter that is plugged into the guest, and pulled out in the middle of everything.
#include "GuestTest.h"
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
    std::unique_ptr<ServedPrinter> mPrinter = PrinterOnTcp("R7G?baud=9600&format=n,8,2");
    std::unique_ptr<Relay> mWire = TheGuest().PlugIn(mPrinter->Address());
};

TEST_F(UsbAdapter, IsAmongThePortsWithItsName) {
    EXPECT_THAT(TheGuest().Run("qnctl ports").text, HasSubstr("/dev/ttyUSB0"));
}

TEST_F(UsbAdapter, EverySettingReachesIt) {
    const std::size_t before = TheGuest().DeviceTrace().size();
    const Guest::Ended ended = TheGuest().Run("uart_guest settings /dev/ttyUSB0");
    EXPECT_EQ(ended.status, 0) << ended.text;
    const std::string trace = TheGuest().DeviceTrace().substr(before);
    // The adapter divides its clock by eighths: the two fastest rates are 0.1 % beside.
    for (const int baud : {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57553, 115384})
        EXPECT_THAT(trace, HasSubstr("baud rate " + std::to_string(baud) + "\n"));
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

TEST_F(UsbAdapter, IsFoundByItsSerialNumberUnderWhateverNameItComesBack) {
    Guest& guest = TheGuest();
    const std::string address = std::string(" usb:") + AdapterSerial;
    const std::string qnctl = "qnctl --quiet --port" + address + " send 'PRINT 1+1'";
    EXPECT_EQ(guest.Run(qnctl).text, "2\n");
    // Who has the old name open keeps it from being used again.
    EXPECT_EQ(guest.Run("sleep 600 </dev/ttyUSB0 >/dev/null 2>&1 & echo $! >/tmp/holder").status,
              0);
    mWire.reset();
    EXPECT_THAT(guest.Run("sleep 1; " + qnctl).status, 4);
    mWire = guest.PlugIn(mPrinter->Address(), "/dev/ttyUSB1");
    EXPECT_NE(guest.Run("test -e /dev/ttyUSB0").status, 0);
    EXPECT_EQ(guest.Run(qnctl).text, "2\n");
    const Guest::Ended control = guest.Run("timeout 60 host-console" + address);
    EXPECT_EQ(control.status, 0) << control.text;
    EXPECT_THAT(control.text, HasSubstr("R7G"));
    mWire.reset();
    guest.Run("kill $(cat /tmp/holder); while test -e /dev/ttyUSB1; do sleep 0.1; done");
}

struct Operation {
    const char* name;
    const char* command;
    std::size_t step; ///< bytes on the line between one phase and the next
};

class PulledOut : public GuestTest, public ::testing::WithParamInterface<Operation> {};

TEST_P(PulledOut, IsToldAtEveryPhaseAndTheNextAdapterWorks) {
    Guest& guest = TheGuest();
    ASSERT_EQ(guest.Run("dd if=/dev/urandom of=/tmp/data bs=1k count=4 2>/dev/null").status, 0);
    const std::string qnctl = "cd /tmp && timeout 60 qnctl --quiet --port /dev/ttyUSB0 ";
    bool finished = false;
    for (std::size_t passed = 1; !finished; passed += GetParam().step) {
        const auto printer = PrinterOnTcp("R7G?baud=9600&format=n,8,2");
        const auto wire = guest.PlugIn(printer->Address());
        wire->PullOutAfter(passed);
        const Guest::Ended ended = guest.Run(qnctl + GetParam().command);
        finished = !wire->IsPulledOut();
        if (finished) {
            EXPECT_EQ(ended.status, 0) << ended.text;
        } else {
            EXPECT_THAT(ended.status, AnyOf(1, 4)) << "after " << passed << ": " << ended.text;
            EXPECT_THAT(ended.text, AnyOf(HasSubstr("the device went away"),
                                          HasSubstr("there is no such device")))
                << "after " << passed;
        }
    }
}

TEST_F(UsbAdapter, AControlOfAHostEndsAtEveryPhaseToo) {
    mWire.reset();
    bool finished = false;
    for (std::size_t passed = 1; !finished; passed += 700) {
        const auto wire = TheGuest().PlugIn(mPrinter->Address());
        wire->PullOutAfter(passed);
        const Guest::Ended ended = TheGuest().Run("timeout 60 host-console /dev/ttyUSB0");
        finished = !wire->IsPulledOut();
        EXPECT_EQ(ended.status, finished ? 0 : 1) << "after " << passed << ": " << ended.text;
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, PulledOut,
                         ::testing::Values(Operation{"Info", "info", 400},
                                           Operation{"Send", "send 'PRINT 1'", 500},
                                           Operation{"Upload", "kermit send data c:DATA.BIN", 1300},
                                           Operation{"Fileload", "fileload data", 1700}),
                         [](const auto& operation) { return operation.param.name; });

} // namespace
} // namespace qncomm::testing

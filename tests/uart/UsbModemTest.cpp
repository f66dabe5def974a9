// A USB modem (the class ACM, which needs no driver of a maker): the guest's kernel is both sides
// of its cable, and a virtual printer inside the guest is behind it.
#include "GuestTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

class UsbModem : public GuestTest {
  protected:
    static void SetUpTestSuite() {
        GuestTest::SetUpTestSuite();
        StartPrinter();
        const Guest::Ended ended =
            TheGuest().Run("timeout 60 sh -c 'until test -e /dev/ttyACM0; do sleep 0.1; done' && "
                           "(while :; do cat /dev/ttyGS0 >/tmp/printer; sleep 0.1; done & "
                           "while :; do cat /tmp/printer >/dev/ttyGS0; sleep 0.1; done &) "
                           ">/dev/null 2>&1");
        ASSERT_EQ(ended.status, 0) << ended.text;
    }

    /// A printer that has just been switched on: one that was left in a transfer waits for its
    /// rest.
    static void StartPrinter() {
        // Its pseudo-terminal stands at its own settings: a modem has none on the cable.
        const Guest::Ended ended =
            TheGuest().Run("kill $(cat /tmp/pid) 2>/dev/null; rm -f /tmp/printer; "
                           "qnsim --baud 9600 --link /tmp/printer >/dev/null 2>&1 & "
                           "echo $! >/tmp/pid; "
                           "timeout 60 sh -c 'until test -e /tmp/printer; do sleep 0.1; done' && "
                           "stty -F /tmp/printer raw -echo 9600 cs8 -parenb cstopb && "
                           "stty -F /dev/ttyGS0 raw -echo");
        ASSERT_EQ(ended.status, 0) << ended.text;
    }
};

TEST_F(UsbModem, AnswersAsTheUartDoes) {
    EXPECT_EQ(TheGuest().Run("qnctl --port /dev/ttyACM0 send 'PRINT 1+1'").text, "2\n");
    EXPECT_THAT(TheGuest().Run("qnctl ports").text, HasSubstr("/dev/ttyACM0"));
}

TEST_F(UsbModem, AFileComesBackAsItWent) {
    const Guest::Ended ended =
        TheGuest().Run("cd /tmp && dd if=/dev/urandom of=there bs=1k count=16 2>/dev/null && "
                       "qnctl --quiet --port /dev/ttyACM0 kermit send there c:DATA.BIN && "
                       "qnctl --quiet --port /dev/ttyACM0 kermit receive c:DATA.BIN back && "
                       "cmp there back && echo the same");
    EXPECT_EQ(ended.text, "the same\n");
}

TEST_F(UsbModem, PulledOutInATransferIsToldAndTheNextOneWorks) {
    const Guest::Ended ended = TheGuest().Run(
        "cd /tmp && dd if=/dev/urandom of=data bs=1k count=2048 2>/dev/null; : >trace; "
        "for modem in /sys/bus/usb/devices/*; do grep -q Gadget $modem/product 2>/dev/null && "
        "echo $modem >plug; done; "
        "qnctl --quiet --port /dev/ttyACM0 --trace trace kermit send data c:D.BIN 2>&1 & "
        "until test $(wc -c <trace) -gt 40000; do sleep 0.1; done; "
        "echo 0 >$(cat plug)/authorized; wait $!");
    EXPECT_THAT(ended.status, AnyOf(1, 4)) << ended.text;
    EXPECT_THAT(ended.text, HasSubstr("the device went away"));
    StartPrinter();
    EXPECT_EQ(TheGuest()
                  .Run("echo 1 >$(cat /tmp/plug)/authorized; "
                       "until test -e /dev/ttyACM0; do sleep 0.1; done; "
                       "qnctl --port /dev/ttyACM0 send 'PRINT 1+1'")
                  .text,
              "2\n");
}

} // namespace
} // namespace qncomm::testing

// Opening a port of the serial control, its settings and its lines.

#include "SerialControlFixture.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

TEST_F(SerialControlTest, SettingsGoToTheLineWithTheHandshaking) {
    mPort.SetHandshaking(3);
    EXPECT_EQ(mPort.Handshaking(), 3);
    mPort.SetPortSettings("2400,m,7,2");
    Open();
    mPort.SetHandshaking(2);
    ASSERT_EQ(mLine.settings.size(), 2U);
    EXPECT_EQ(mLine.settings[0].baud, 2400);
    EXPECT_EQ(mLine.settings[0].parity, 'm');
    EXPECT_EQ(mLine.settings[0].dataBits, 7);
    EXPECT_EQ(mLine.settings[0].stopBits, 2);
    EXPECT_TRUE(mLine.settings[0].xonXoff);
    EXPECT_TRUE(mLine.settings[0].rtsCts);
    EXPECT_FALSE(mLine.settings[1].xonXoff);
    EXPECT_TRUE(mLine.settings[1].rtsCts);
}

TEST_F(SerialControlTest, ASettingsTextThatDoesNotParseIsRefusedAndKeepsTheOldOne) {
    for (const char* text : {"", "9600", "9600,N,8", "9601,N,8,1", "9600,X,8,1", "9600,N,9,1",
                             "9600,N,8,3", "9600,N,8,1,", "9600,NN,8,1", "9600,,8,1", "x,N,8,1"}) {
        const QNError error = ErrorOf([&] { mPort.SetPortSettings(text); });
        EXPECT_EQ(error.Number(), 5) << text;
        EXPECT_EQ(error.Source(), "PDQComm");
    }
    EXPECT_EQ(mPort.PortSettings(), "9600,N,8,1");
}

TEST_F(SerialControlTest, SettingsThatTheOpenDeviceRefusesKeepTheOldOnes) {
    Open();
    mLine.configureResult = {IoStatus::Unsupported, 0, "the device does not take the parity"};
    const QNError error = ErrorOf([&] { mPort.SetPortSettings("9600,M,8,1"); });
    EXPECT_EQ(error.Number(), SerialErrDevice);
    EXPECT_THAT(error.Description(), HasSubstr("does not take the parity"));
    EXPECT_EQ(mPort.PortSettings(), "9600,N,8,1");
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(SerialControlTest, AFailedOpeningIsRaisedWithTheNumberOfItsKind) {
    EXPECT_EQ(OpenError({IoStatus::Missing, 2, "gone"}).Number(), SerialErrNoSuchPort);
    EXPECT_EQ(OpenError({IoStatus::Denied, 13, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::Unsupported, 0, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::TimedOut, 0, "no"}).Number(), SerialErrDevice);
    EXPECT_EQ(OpenError({IoStatus::Failed, 5, "no"}).Number(), SerialErrDevice);
    const QNError busy = OpenError({IoStatus::Busy, 16, "held by minicom (process 77)"});
    EXPECT_EQ(busy.Number(), SerialErrPortBusy);
    EXPECT_EQ(busy.Source(), "PDQComm");
    EXPECT_EQ(busy.Description(), "Port COM3 (/dev/fake): held by minicom (process 77).");
    ASSERT_TRUE(mPort.LastFailure());
    EXPECT_EQ(mPort.LastFailure()->number, SerialErrPortBusy);
    EXPECT_EQ(mPort.LastFailure()->reason.systemNumber, 16);
    EXPECT_FALSE(mPort.PortOpen());
    mLine.openResult = {};
    Open();
    EXPECT_FALSE(mPort.LastFailure());
}

TEST_F(SerialControlTest, ANumberWithoutAnAddressDoesNotOpen) {
    for (const std::int16_t number : std::initializer_list<std::int16_t>{4, 16, 17, -1}) {
        mPort.SetPortNumber(number);
        const QNError error = ErrorOf([&] { mPort.SetPortOpen(true); });
        EXPECT_EQ(error.Number(), SerialErrNoSuchPort);
        EXPECT_THAT(error.Description(), HasSubstr("COM" + std::to_string(number)));
        EXPECT_FALSE(mPort.ProbePort(number));
    }
}

TEST_F(SerialControlTest, OpeningTwiceOpensOnce) {
    Open();
    mPort.SetPortOpen(true);
    EXPECT_EQ(mLine.opens, 1);
    mPort.SetPortOpen(false);
    mPort.SetPortOpen(false);
    EXPECT_EQ(mLine.closes, 1);
}

TEST_F(SerialControlTest, AnotherNumberOnAnOpenPortMovesThere) {
    Open();
    EXPECT_EQ(mPort.Bindings().Give(4, "/dev/fake4"), "");
    mPort.SetPortNumber(4);
    EXPECT_TRUE(mPort.PortOpen());
    EXPECT_EQ(mPort.PortName(), "COM4 (/dev/fake4)");
    EXPECT_EQ(mLine.opens, 2);
    EXPECT_EQ(mLine.closes, 1);
}

TEST_F(SerialControlTest, DsrFollowsTheLineWhereThereIsOne) {
    mLine.dsr = false;
    EXPECT_FALSE(mPort.DSRState());
    Open();
    EXPECT_FALSE(mPort.DSRState());
    mLine.dsr = true;
    EXPECT_TRUE(mPort.DSRState());
}

TEST_F(SerialControlTest, TheTraceTellsOnceThatThereAreNoModemLines) {
    for (int time = 0; time < 3; ++time) {
        Open();
        EXPECT_TRUE(mPort.DSRState());
        mPort.SetPortOpen(false);
    }
    EXPECT_EQ(std::count(mTrace.mLines.begin(), mTrace.mLines.end(),
                         "event no modem lines here: DSR reads as held"),
              1);
}

} // namespace
} // namespace qncomm::testing

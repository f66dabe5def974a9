// Who the printer is and how it comes back from a restart, through the control.

#include "testing/stack/AssembledFixture.h"

#include "common/modErrorHandling.h"
#include "dialogs/frmWaitForReboot.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class Identity : public AssembledFixture {};

TEST_F(Identity, ModelAndFirmwareAreAskedForOnce) {
    EXPECT_EQ(Control().PrinterType(), "R7G");
    TakeSent();
    EXPECT_EQ(Control().FirmwareVersion(), "Quorin 8.30");
    EXPECT_EQ(Control().Version(0), "Quorin 8.30");
    EXPECT_EQ(Control().Version(1), "R7G");
    EXPECT_THAT(TakeCommands(), IsEmpty());
    EXPECT_EQ(RaisedBy([&] { Control().Version(2); }), "1018 QNComm:Version");
}

TEST_F(Identity, EveryModelTellsItsOwn) {
    for (const std::string model :
         {"R7A", "R7B", "R7C", "R7D", "R7E", "R7F", "R7EZV", "R7FZV", "R7G", "R7H"}) {
        Assemble("sim:" + model);
        EXPECT_EQ(Control().PrinterType(), model);
        EXPECT_NE(Control().FirmwareVersion(), "") << model;
    }
    Assemble("sim:R7H?version=Quorin 99.1");
    EXPECT_EQ(Control().FirmwareVersion(), "Quorin 99.1");
}

TEST_F(Identity, ARestartIsWaitedForAndShown) {
    Assemble("sim:R7G?boot-ms=20000");
    Control().CopyFile("c:PRICES.DAT", "tmp:GONE.DAT");
    int shown = 0;
    const auto watch = mReactor.StartTimer(
        1000, [&] { shown += mForms.Shown<frmWaitForReboot>() != nullptr ? 1 : 0; });
    const std::int64_t start = mReactor.NowMs();
    Control().Reboot();
    EXPECT_GE(mReactor.NowMs() - start, 20'000);
    EXPECT_GT(shown, 15);
    EXPECT_EQ(mForms.Shown<frmWaitForReboot>(), nullptr);
    EXPECT_THAT(FilesOn("tmp:"), IsEmpty()) << "the work device does not outlive a restart";
    EXPECT_THAT(FilesOn("c:"), Contains("PRICES.DAT"));
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
}

TEST_F(Identity, WhatWasKnownOfThePrinterIsForgottenByARestart) {
    Control().Files("c:");
    Control().PrinterType();
    Control().Reboot();
    TakeSent();
    EXPECT_EQ(NumberRaisedBy([&] { Control().DeviceUsedMem("c:"); }), 5);
    EXPECT_EQ(Control().PrinterType(), "R7G");
    EXPECT_THAT(TakeCommands(), Not(IsEmpty())) << "another printer may answer now";
}

TEST_F(Identity, AShownTerminalIsThereAgainAfterARestart) {
    Show().Reboot();
    mReactor.Pass(5000);
    EXPECT_EQ(Type("PRINT 7\r"), "PRINT 7\r\n7\r\nOk");
}

TEST_F(Identity, ASearchTellsItsStepsAndCanBeCancelled) {
    Assemble("sim:R7G?baud=57600&format=n,8,2");
    Strings messages;
    bool stop = false;
    const Subscription status =
        Control().StatusEvent.Connect([&](std::string& text, std::int16_t, bool& cancel) {
            messages.push_back(text);
            cancel = stop;
        });
    stop = true;
    EXPECT_FALSE(Control().DoAutoconnect());
    EXPECT_LT(messages.size(), 4U);
    stop = false;
    messages.clear();
    EXPECT_TRUE(Control().DoAutoconnect());
    EXPECT_EQ(messages.back(),
              "Printer connected through UART1: at 57600, None, 8, 2, No Flowcontrol");
    EXPECT_EQ(mSettings->ReadValue("Settings", "Baudrate", ""), "57600");
    EXPECT_EQ(Control().PrinterType(), "R7G");
}

TEST_F(Identity, WithNobodyOnTheLineASearchFindsNothingAndThereAreNoAnswers) {
    Assemble("sim:R7G?baud=1200");
    EXPECT_FALSE(Control().DoAutoconnect());
    EXPECT_EQ(Control().PrinterType(), "");
    EXPECT_EQ(Control().Fre(), 0);
    EXPECT_EQ(NumberRaisedBy([&] { Control().Files("c:"); }), ErrPrinterModel);
    EXPECT_FALSE(mAssembly->Serial().PortOpen());
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
}

TEST_F(Identity, APortIsReportedOpenAndClosedOncePerUse) {
    std::vector<bool> states;
    const Subscription state =
        Control().PortStateEvent.Connect([&](bool& busy) { states.push_back(busy); });
    Control().PrinterType();
    EXPECT_THAT(states, ElementsAre(true, false));
    Show();
    Control().Files("c:");
    EXPECT_THAT(states, ElementsAre(true, false, true)) << "shown, the port stays open";
    Control().UserControl_Hide();
    EXPECT_THAT(states, ElementsAre(true, false, true, false));
}

} // namespace
} // namespace qncomm::testing

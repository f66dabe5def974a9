// The serial port setup dialog, opened through the control beside real ports: the user picks a
// port, changes the line's settings and searches.

#include "testing/stack/AssembledFixture.h"

#include "dialogs/frmCommSettings.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SettingsDialogue : public AssembledFixture {
  protected:
    /// Port 1 has a printer at 9600, port 2 another model at 57600, port 3 none that answers.
    SettingsDialogue() {
        AssembleOn({"sim:R7G", "sim:R7A?baud=57600&format=n,8,2", "sim:R7G?baud=300"});
    }
    ~SettingsDialogue() override { EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault); }

    void Open(const std::function<void(frmCommSettings&)>& person) {
        mForms.On<frmCommSettings>(person);
        Control().ShowCommSettings();
    }
    static void PickPort(frmCommSettings& form, std::int32_t number) {
        for (std::size_t at = 0; at < form.cmbPort.Entries().size(); ++at)
            if (form.cmbPort.Entries()[at].value == number)
                form.cmbPort.Pick(static_cast<std::int32_t>(at));
        EXPECT_EQ(form.cmbPort.SelectedValue(), number);
    }
    std::string Setting(const std::string& key) {
        return mSettings->ReadValue("Settings", key, "none");
    }
};

TEST_F(SettingsDialogue, ThePortsThatCanBeUsedAreListedByTheirNames) {
    Strings ports;
    Open([&](frmCommSettings& form) {
        for (const auto& entry : form.cmbPort.Entries())
            ports.push_back(entry.text);
        EXPECT_EQ(form.cmbPort.SelectedValue(), 1);
        EXPECT_TRUE(form.cmdOK.Enabled());
    });
    EXPECT_THAT(ports, ElementsAre("com1:", "com2:", "com3:"));
}

TEST_F(SettingsDialogue, APickedPortWithItsSettingsIsUsedFromThenOn) {
    EXPECT_EQ(Control().PrinterType(), "R7G");
    Open([](frmCommSettings& form) {
        PickPort(form, 2);
        form.cmbBaudrate.SelectValue(57600);
        form.cmdOK.Click();
    });
    EXPECT_EQ(Setting("Commport"), "2");
    EXPECT_EQ(Setting("Baudrate"), "57600");
    EXPECT_EQ(Control().PrinterType(), "R7A");
    EXPECT_THAT(NamesOf(Control().Files("ram:")), Contains("PRICES.DAT"));
}

TEST_F(SettingsDialogue, CancelAndTheCloseBoxChangeNothing) {
    for (const bool byButton : {true, false}) {
        Open([&](frmCommSettings& form) {
            PickPort(form, 2);
            form.cmbBaudrate.SelectValue(2400);
            if (byButton)
                form.cmdCancel.Click();
            else
                form.Unload(UnloadMode::ControlMenu);
        });
        EXPECT_EQ(Setting("Commport"), "1");
        EXPECT_EQ(Control().PrinterType(), "R7G");
    }
}

TEST_F(SettingsDialogue, ASearchFindsThePrinterAtThePickedPortAndLeavesTheDialogOpen) {
    Open([&](frmCommSettings& form) {
        PickPort(form, 2);
        form.cmdAutoConnect.Click();
        EXPECT_TRUE(form.IsOpen());
        EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 57600);
        EXPECT_EQ(form.cmbPort.SelectedValue(), 2);
        EXPECT_EQ(mAssembly->Serial().Tag(), "EXCLUSIVE_USE");
    });
    EXPECT_EQ(mAssembly->Serial().Tag(), "");
    EXPECT_EQ(Setting("Commport"), "2") << "what a search finds is kept";
    EXPECT_EQ(Control().PrinterType(), "R7A");
}

TEST_F(SettingsDialogue, AFailedSearchLeavesTheFields) {
    Open([](frmCommSettings& form) {
        PickPort(form, 3);
        form.cmbBaudrate.SelectValue(19200);
        form.cmdAutoConnect.Click();
        EXPECT_TRUE(form.IsOpen());
        EXPECT_EQ(form.cmbPort.SelectedValue(), 3);
        EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 19200);
        form.cmdCancel.Click();
    });
    EXPECT_EQ(Control().PrinterType(), "R7G");
}

TEST_F(SettingsDialogue, TheShownTerminalMovesToTheAcceptedPort) {
    Show();
    Open([](frmCommSettings& form) {
        PickPort(form, 2);
        form.cmdAutoConnect.Click();
        form.cmdOK.Click();
    });
    EXPECT_TRUE(mAssembly->Serial().PortOpen());
    EXPECT_THAT(mAssembly->Serial().PortName(), HasSubstr("R7A"));
    EXPECT_EQ(Type("PRINT VERSION$(1)\r"), "PRINT VERSION$(1)\r\nR7A\r\nOk");
}

TEST_F(SettingsDialogue, NothingElseUsesThePrinterWhileTheDialogIsOpen) {
    Control().PrinterType();
    TakeSent();
    Open([&](frmCommSettings& form) {
        EXPECT_EQ(Control().Fre(), 0);
        EXPECT_FALSE(Control().DoAutoconnect());
        Control().ShowCommSettings();
        form.cmdCancel.Click();
    });
    EXPECT_EQ(mForms.mShown, 1);
    EXPECT_EQ(TakeSent(), "");
    EXPECT_GT(Control().Fre(), 0);
}

TEST_F(SettingsDialogue, DsrDetectionSkipsASearchWhereNoPrinterIsAttached) {
    Assemble("sim:R7G?dsr=off");
    Open([](frmCommSettings& form) {
        form.chkDSRDetect.Click();
        form.cmdOK.Click();
    });
    EXPECT_FALSE(Control().DoAutoconnect());
    EXPECT_EQ(TakeSent(), "");
    Open([](frmCommSettings& form) {
        EXPECT_TRUE(form.chkDSRDetect.Checked());
        form.chkDSRDetect.Click();
        form.cmdOK.Click();
    });
    EXPECT_TRUE(Control().DoAutoconnect());
}

TEST_F(SettingsDialogue, TheToolbarOpensItAndSearches) {
    bool opened = false;
    mForms.On<frmCommSettings>([&](frmCommSettings&) { opened = true; });
    Control().PressToolbarKey("CommSettings");
    EXPECT_TRUE(opened);
    Control().PressToolbarKey("Autoconnect");
    TakeSent();
    EXPECT_GT(Control().Fre(), 0);
    EXPECT_THAT(TakeCommands(), ElementsAre(HasSubstr("FRE"))) << "found already";
}

} // namespace
} // namespace qncomm::testing

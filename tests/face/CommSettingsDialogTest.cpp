// The serial port setup as a window: seen, spoken and used by keys alone.

#include "common/MemorySettings.h"
#include "common/QNError.h"
#include "dialogs/Dialogs.h"
#include "dialogs/frmCommSettings.h"
#include "platform/SystemFiles.h"
#include "qt/QtFormWindows.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScriptedSerial.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QTest>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::Named;
using testing::OnModal;
using testing::Spoken;
using testing::SpokenField;

class CommSettingsDialog : public ::testing::Test {
  protected:
    CommSettingsDialog() {
        mSerial.mValidPorts = {1, 3};
        mLink.SetSerialPort(&mSerial);
        mLink.SetRegSettings(mSettings);
    }

    /// Shows the dialog as everyone does, act being the user.
    std::int16_t Show(std::function<void(QWidget&)> act) {
        OnModal(std::move(act));
        return mLink.ShowSettingsDlg();
    }

    testing::ManualLoop mLoop;
    testing::RecordingDesktop mDesktop;
    QWidget mHost;
    QtFormWindows mForms{&mHost, mDesktop};
    Dialogs mDialogs{mLoop, mForms};
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    testing::ScriptedSerial mSerial{mLoop};
    clsDataLink mLink{LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()}};
};

TEST_F(CommSettingsDialog, EveryFieldHasANameAndARole) {
    Show([](QWidget& window) {
        const auto spoken = [&](const char* name) { return Spoken(Named<QWidget>(window, name)); };
        EXPECT_EQ(window.windowTitle(), u"Serial Port Setup"_qs);
        EXPECT_EQ(spoken("cmbPort"), (SpokenField{"Port", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("cmbBaudrate"), (SpokenField{"Baudrate", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("cmbDatabits"), (SpokenField{"Databits", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("cmbParity"), (SpokenField{"Parity", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("cmbStopbits"), (SpokenField{"Stopbits", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("cmbFlowcontrol"), (SpokenField{"Flowcontrol", QAccessible::ComboBox}));
        EXPECT_EQ(spoken("chkDSRDetect"),
                  (SpokenField{"Use DSR-line for fast printer detection.", QAccessible::CheckBox}));
        EXPECT_EQ(spoken("chkAutoConnect"),
                  (SpokenField{"Automatic run AutoConnect", QAccessible::CheckBox}));
        EXPECT_EQ(spoken("cmdAutoConnect"),
                  (SpokenField{"Run AutoConnect", QAccessible::PushButton}));
        EXPECT_EQ(spoken("cmdOK"), (SpokenField{"OK", QAccessible::PushButton}));
        EXPECT_EQ(spoken("cmdCancel"), (SpokenField{"Cancel", QAccessible::PushButton}));
        window.close();
    });
}

TEST_F(CommSettingsDialog, EveryFieldHasAKeyOfItsOwn) {
    Show([](QWidget& window) {
        EXPECT_THAT(testing::CaptionsWithoutKey(window), ElementsAre());
        window.close();
    });
}

TEST_F(CommSettingsDialog, TheTabKeyGoesThroughTheFieldsAsTheyStand) {
    Show([](QWidget& window) {
        Named<QWidget>(window, "cmbPort").setFocus();
        EXPECT_THAT(testing::TabRound(window),
                    ElementsAre("Port", "Baudrate", "Databits", "Parity", "Stopbits", "Flowcontrol",
                                "Use DSR-line for fast printer detection.",
                                "Search all serial ports.", "Select highest availible baudrate.",
                                "Automatic run AutoConnect", "Run AutoConnect", "OK", "Cancel"));
        window.close();
    });
}

TEST_F(CommSettingsDialog, SettingsAreChosenAndAcceptedByKeysAlone) {
    const std::int16_t result = Show([](QWidget& window) {
        EXPECT_EQ(testing::FocusName(), "Port");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down); // com3:
        QTest::keyClick(&window, Qt::Key_B, Qt::AltModifier);
        EXPECT_EQ(testing::FocusName(), "Baudrate");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_3); // 38.400 baud
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_7);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_E);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(mLink.Commport(), "3");
    EXPECT_EQ(mLink.Baudrate(), "38400");
    EXPECT_EQ(mLink.Databits(), "7");
    EXPECT_EQ(mLink.Parity(), "Even");
    EXPECT_EQ(mSettings->ReadValue("Settings", "Baudrate", ""), "38400");
}

TEST_F(CommSettingsDialog, EscapeTheCloseBoxAndCancelAllLeaveTheSettingsAlone) {
    const std::string before = mLink.Baudrate();
    const auto change = [](QWidget& window) {
        QTest::keyClick(&Named<QComboBox>(window, "cmbBaudrate"), Qt::Key_End);
    };
    EXPECT_EQ(Show([&](QWidget& window) {
                  change(window);
                  QTest::keyClick(&window, Qt::Key_Escape);
              }),
              2);
    EXPECT_EQ(Show([&](QWidget& window) {
                  change(window);
                  window.close();
              }),
              2);
    EXPECT_EQ(Show([&](QWidget& window) {
                  change(window);
                  QTest::mouseClick(&Named<QPushButton>(window, "cmdCancel"), Qt::LeftButton);
              }),
              2);
    EXPECT_EQ(mLink.Baudrate(), before);
}

TEST_F(CommSettingsDialog, TheDsrBoxActsAtOnce) {
    Show([&](QWidget& window) {
        auto& box = Named<QCheckBox>(window, "chkDSRDetect");
        const bool before = mLink.DSRDetectActive();
        QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
        EXPECT_NE(mLink.DSRDetectActive(), before);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
}

TEST_F(CommSettingsDialog, OkIsOffWhileTheConfiguredPortIsNotThere) {
    mLink.SetCommport("9");
    mSerial.mValidPorts = {1, 3};
    Show([](QWidget& window) {
        auto& ok = Named<QPushButton>(window, "cmdOK");
        EXPECT_FALSE(ok.isEnabled());
        QTest::keyClick(&Named<QComboBox>(window, "cmbPort"), Qt::Key_Down);
        EXPECT_TRUE(ok.isEnabled());
        window.close();
    });
}

/// A store that nothing can be written to.
class FullSettings : public MemorySettings {
  public:
    void WriteValue(std::string_view, std::string_view, std::string_view) override {
        throw QNError(61, "settings", "Disk full");
    }
};

TEST_F(CommSettingsDialog, AnErrorIsToldAndTheDialogStays) {
    mLink.SetRegSettings(std::make_shared<FullSettings>());
    Show([&](QWidget& window) {
        Named<QPushButton>(window, "cmdOK").click();
        EXPECT_EQ(mDesktop.mBoxes.size(), 1U);
        EXPECT_EQ(mDesktop.mBoxes.at(0).text, "Disk full");
        EXPECT_TRUE(window.isVisible());
        window.close();
    });
}

TEST_F(CommSettingsDialog, TheEndOfTheProgramUnwindsThroughTheDialog) {
    const Subscription ending = mLink.StatusEvent.Connect(
        [](std::string&, std::int16_t&, bool&) { throw OperationCancelled(); });
    OnModal([](QWidget& window) { Named<QPushButton>(window, "cmdAutoConnect").click(); });
    EXPECT_THROW(mLink.ShowSettingsDlg(), OperationCancelled);
    EXPECT_TRUE(mDesktop.mBoxes.empty());
}

TEST_F(CommSettingsDialog, ItsParentMayGoMeanwhileWhichCountsAsTheCloseBox) {
    auto host = std::make_unique<QWidget>();
    QtFormWindows forms(host.get(), mDesktop);
    frmCommSettings form(mLink);
    OnModal([&](QWidget&) { host.reset(); });
    EXPECT_EQ(form.ShowMe(forms), 2);
    EXPECT_FALSE(form.IsOpen());
}

TEST_F(CommSettingsDialog, IsSeenInLightAndDark) {
    Show([](QWidget& window) {
        testing::SavePicture(window, u"serial-port-setup"_qs);
        const testing::DarkDesktop dark;
        testing::SavePicture(window, u"serial-port-setup-dark"_qs);
        window.close();
    });
}

} // namespace
} // namespace qncomm

// The function keys setup, the binary transfer and the reboot wait as windows.

#include "common/MemorySettings.h"
#include "common/RuntimeErrors.h"
#include "dialogs/Dialogs.h"
#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "platform/SystemFiles.h"
#include "qt/QtFormWindows.h"
#include "testing/core/DeskTools.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::Named;
using testing::OnModal;
using testing::Spoken;
using testing::SpokenField;

constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Alt = Qt::AltModifier;

class FormDialogs : public ::testing::Test {
  protected:
    template <class Form>
    void Show(Form& form, std::function<void(QWidget&)> act) {
        OnModal(std::move(act));
        mForms.ShowModal(form);
    }

    std::string Stored(std::string_view key) {
        return mSettings->ReadValue("FunctionKeys", key, "nothing");
    }

    testing::RecordingDesktop mDesktop;
    testing::ScriptedFileDialogs mFiles;
    QWidget mHost;
    QtFormWindows mForms{&mHost, mDesktop};
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
};

/// Types at the widget that has the keys.
void Type(const QString& text) {
    QTest::keyClicks(QApplication::focusWidget(), text);
}
void Press(Qt::Key key, Qt::KeyboardModifiers held = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, held);
}

using FunctionKeysDialog = FormDialogs;

TEST_F(FunctionKeysDialog, EveryFieldHasANameARoleAndAKey) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), u"Function Keys Setup"_qs);
        EXPECT_EQ(Spoken(Named<QWidget>(window, "cmbAlt0")),
                  (SpokenField{"On CTRL+Shift+F1...", QAccessible::ComboBox}));
        EXPECT_EQ(Spoken(Named<QWidget>(window, "txtAlt0")),
                  (SpokenField{"What the key sends, or the path", QAccessible::EditableText}));
        EXPECT_EQ(Spoken(Named<QWidget>(window, "cmdAlt0")),
                  (SpokenField{"Browse", QAccessible::PushButton}));
        auto& tabs = Named<QTabWidget>(window, "SSTab1");
        EXPECT_EQ(tabs.tabText(7), u"F&8"_qs);
        EXPECT_THAT(testing::CaptionsWithoutKey(window), ElementsAre());
        Press(Qt::Key_4, Alt);
        EXPECT_EQ(tabs.currentIndex(), 3);
        EXPECT_TRUE(Named<QWidget>(window, "txtAlt3").isVisible());
        EXPECT_FALSE(Named<QWidget>(window, "txtAlt0").isVisible());
        Press(Qt::Key_Escape);
    });
}

TEST_F(FunctionKeysDialog, AMacroIsWrittenByKeysAlone) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [](QWidget& window) {
        Press(Qt::Key_2, Alt);
        Named<QWidget>(window, "txtAlt1").setFocus();
        Type(u"PRINT 1"_qs);
        Press(Qt::Key_M, Ctrl);
        Press(Qt::Key_A, Ctrl | Qt::ShiftModifier);
        Press(Qt::Key_Return);
    });
    EXPECT_FALSE(form.IsOpen());
    EXPECT_EQ(Stored("F2"), "0;PRINT 1<CR><SOH>");
    EXPECT_EQ(Stored("F1"), "0;");
}

TEST_F(FunctionKeysDialog, CtrlAndALetterReplaceWhatIsSelectedWhicheverFieldHasTheKeys) {
    mSettings->WriteValue("FunctionKeys", "F1", "0;abc");
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [&](QWidget& window) {
        auto& text = Named<QLineEdit>(window, "txtAlt0");
        text.setSelection(1, 1);
        Named<QWidget>(window, "cmbAlt0").setFocus();
        Press(Qt::Key_C, Ctrl);
        EXPECT_EQ(text.text(), u"a<ETX>c"_qs);
        EXPECT_EQ(form.pic1[0].txtAlt.Text(), "a<ETX>c");
        Press(Qt::Key_Escape);
    });
    EXPECT_EQ(Stored("F1"), "0;abc");
}

TEST_F(FunctionKeysDialog, InAFileMacroTheSameKeysAreOrdinary) {
    mSettings->WriteValue("FunctionKeys", "F1", "1;/tmp/label.txt");
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [](QWidget& window) {
        auto& text = Named<QLineEdit>(window, "txtAlt0");
        text.setFocus();
        Press(Qt::Key_A, Ctrl);
        EXPECT_EQ(text.selectedText(), u"/tmp/label.txt"_qs);
        Press(Qt::Key_Escape);
    });
}

TEST_F(FunctionKeysDialog, BrowsingIsOfferedForFilesAndPrograms) {
    mFiles.mAnswers = {"/opt/my tools/edit"};
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [](QWidget& window) {
        auto& browse = Named<QPushButton>(window, "cmdAlt0");
        EXPECT_FALSE(browse.isVisible());
        Named<QWidget>(window, "cmbAlt0").setFocus();
        Press(Qt::Key_R); // Run:
        EXPECT_TRUE(browse.isVisible());
        Press(Qt::Key_B, Alt);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return Named<QLineEdit>(window, "txtAlt0").text() == u"\"/opt/my tools/edit\""_qs;
        }));
        QTest::mouseClick(&Named<QWidget>(window, "Command1_0"), Qt::LeftButton);
    });
    EXPECT_EQ(Stored("F1"), "2;\"/opt/my tools/edit\"");
}

TEST_F(FunctionKeysDialog, WithoutAStoreOkTellsTheErrorAndTheDialogStays) {
    frmFunctionKeysSetup form(nullptr, mFiles);
    Show(form, [&](QWidget& window) {
        QTest::mouseClick(&Named<QWidget>(window, "Command1_0"), Qt::LeftButton);
        EXPECT_EQ(mDesktop.mBoxes.size(), 1U);
        EXPECT_TRUE(window.isVisible());
        Press(Qt::Key_Escape);
    });
}

TEST_F(FunctionKeysDialog, IsSeenInLightAndDark) {
    mSettings->WriteValue("FunctionKeys", "F1", "0;PRINT \"&&?copies\"How many?\"&&\"<CR>");
    mSettings->WriteValue("FunctionKeys", "F2", "1;/home/technician/labels/shelf.prg");
    frmFunctionKeysSetup form(mSettings, mFiles);
    Show(form, [](QWidget& window) {
        testing::SavePicture(window, u"function-keys-setup"_qs);
        Press(Qt::Key_2, Alt);
        const testing::DarkDesktop dark;
        testing::SavePicture(window, u"function-keys-setup-dark"_qs);
        Press(Qt::Key_Escape);
    });
}

using BinaryTransferDialog = FormDialogs;

TEST_F(BinaryTransferDialog, EveryFieldHasANameARoleAndItsPlaceInTheRound) {
    frmBinaryTransfer form(PrinterReceives, BinaryKermit, mDesktop, mFiles, SystemFiles());
    Show(form, [](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), u"Select File to Send (Printer Recieves File)"_qs);
        EXPECT_EQ(Spoken(Named<QWidget>(window, "cmbProtocol")),
                  (SpokenField{"Protocol", QAccessible::ComboBox}));
        EXPECT_EQ(Spoken(Named<QWidget>(window, "txtFilename")),
                  (SpokenField{"Filename", QAccessible::EditableText}));
        EXPECT_EQ(Spoken(Named<QWidget>(window, "lblFolder")).role, QAccessible::StaticText);
        EXPECT_THAT(testing::CaptionsWithoutKey(window), ElementsAre());
        EXPECT_THAT(testing::TabRound(window),
                    ElementsAre("Filename", "Browse", "Send", "Cancel", "Protocol"));
        Press(Qt::Key_Escape);
    });
    EXPECT_TRUE(form.Cancel());
    EXPECT_FALSE(form.Accepted());
}

TEST_F(BinaryTransferDialog, AFileIsNamedAndSentByKeysAlone) {
    const testing::ScratchFolder folder;
    const std::string path = folder.Write("label.prg", "10 PRINT\r\n");
    frmBinaryTransfer form(PrinterReceives, BinaryKermit, mDesktop, mFiles, SystemFiles());
    Show(form, [&](QWidget& window) {
        QTest::keyClick(&window, Qt::Key_P, Alt);
        Press(Qt::Key_Down);
        QTest::keyClick(&window, Qt::Key_F, Alt);
        Type(QString::fromStdString(path + "x"));
        Press(Qt::Key_Return); // there is no such file
        EXPECT_EQ(mDesktop.mBoxes.size(), 1U);
        EXPECT_TRUE(window.isVisible());
        Press(Qt::Key_Backspace);
        Press(Qt::Key_Return);
    });
    EXPECT_TRUE(form.Accepted());
    EXPECT_EQ(form.Filename(), path);
    EXPECT_EQ(form.Protocol(), BinaryZModem);
}

TEST_F(BinaryTransferDialog, BrowsingFillsNameAndFolder) {
    mFiles.mAnswers = {"/var/spool/labels/out.bin"};
    frmBinaryTransfer form(PrinterSends, BinaryZModem, mDesktop, mFiles, SystemFiles());
    Show(form, [](QWidget& window) {
        QTest::mouseClick(&Named<QWidget>(window, "cmdBrowse"), Qt::LeftButton);
        EXPECT_EQ(Named<QLineEdit>(window, "txtFilename").text(), u"out.bin"_qs);
        EXPECT_TRUE(Named<QLabel>(window, "lblFolder").text().startsWith(u"/var/spool/labels"_qs));
        EXPECT_EQ(Spoken(Named<QWidget>(window, "cmdButton0")).name, "Recieve");
        window.close();
    });
    EXPECT_FALSE(form.Cancel());
    EXPECT_FALSE(form.Accepted());
}

TEST_F(BinaryTransferDialog, ALongFolderDoesNotWidenTheWindow) {
    mFiles.mAnswers = {"/" + std::string(400, 'd') + "/out.bin"};
    frmBinaryTransfer form(PrinterSends, BinaryZModem, mDesktop, mFiles, SystemFiles());
    Show(form, [](QWidget& window) {
        const int before = window.width();
        QTest::mouseClick(&Named<QWidget>(window, "cmdBrowse"), Qt::LeftButton);
        QCoreApplication::processEvents();
        EXPECT_EQ(window.width(), before);
        window.close();
    });
}

TEST_F(BinaryTransferDialog, IsSeenInLightAndDark) {
    frmBinaryTransfer form(PrinterReceives, BinaryKermit, mDesktop, mFiles, SystemFiles());
    Show(form, [&](QWidget& window) {
        Type(u"shelf.prg"_qs);
        testing::SavePicture(window, u"binary-transfer"_qs);
        const testing::DarkDesktop dark;
        testing::SavePicture(window, u"binary-transfer-dark"_qs);
        window.close();
    });
}

/// A form that nothing is registered for.
struct UnknownForm : FormModel {
    UnknownForm() : FormModel("Unknown") {}
};

using FormWithoutAWindow = FormDialogs;

TEST_F(FormWithoutAWindow, CountsAsClosedByItsCloseBox) {
    UnknownForm form;
    mForms.ShowModal(form);
    EXPECT_FALSE(form.IsOpen());
    EXPECT_EQ(mForms.Show(form), nullptr);
}

using RebootWindow = FormDialogs;

TEST_F(RebootWindow, StandsBesideAndCreepsForward) {
    testing::ManualLoop loop;
    Dialogs dialogs(loop, mForms);
    testing::ShowActive(mHost);
    const auto shown = dialogs.ShowWaitForReboot();
    auto* window = mHost.findChild<QDialog*>();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    EXPECT_FALSE(window->isModal());
    EXPECT_EQ(window->windowTitle(), u"Printer Reboot..."_qs);
    EXPECT_TRUE(window->findChildren<QPushButton*>().isEmpty());
    auto& bar = Named<QProgressBar>(*window, "ProgressBar1");
    EXPECT_EQ(Spoken(bar), (SpokenField{"Printer Reboot...", QAccessible::ProgressBar}));
    for (int second = 0; second < 9; ++second)
        loop.Yield(1000);
    EXPECT_EQ(bar.value(), 9);
    testing::SavePicture(*window, u"reboot-wait"_qs);
    for (int second = 0; second < 40; ++second)
        loop.Yield(1000);
    EXPECT_EQ(bar.value(), 30);
}

TEST_F(RebootWindow, ClosedByTheUserOnlyTheWindowGoes) {
    testing::ManualLoop loop;
    Dialogs dialogs(loop, mForms);
    auto shown = dialogs.ShowWaitForReboot();
    auto* window = mHost.findChild<QDialog*>();
    ASSERT_NE(window, nullptr);
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    loop.Yield(1000);
    EXPECT_EQ(Named<QProgressBar>(*window, "ProgressBar1").value(), 1);
    shown.reset();
    EXPECT_EQ(mHost.findChild<QDialog*>(), nullptr);
}

TEST_F(RebootWindow, MayOutliveItsParent) {
    testing::ManualLoop loop;
    auto host = std::make_unique<QWidget>();
    QtFormWindows forms(host.get(), mDesktop);
    Dialogs dialogs(loop, forms);
    const auto shown = dialogs.ShowWaitForReboot();
    host.reset();
    loop.Yield(1000);
    EXPECT_NE(shown, nullptr);
}

} // namespace
} // namespace qncomm

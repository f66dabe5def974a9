#include "common/modErrorHandling.h"
#include "dialogs/frmCommSettings.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Strings;

class Toolbar : public ControlFixture {
  protected:
    void Macro(const std::string& value) {
        SetMacro("F1", value);
        mControl->PressToolbarKey("F1");
    }
};

TEST_F(Toolbar, HasItsButtonsInTheirOrder) {
    Strings keys;
    for (const ToolbarButton& button : mControl->Toolbar1.Buttons())
        keys.push_back(button.key);
    EXPECT_THAT(keys,
                ElementsAre("CommSettings", "Autoconnect", "Clear", "Copy", "Paste", "UploadA",
                            "DownloadA", "UploadB", "DownloadB", "FunctionkeysSetup", "F1", "F2",
                            "F3", "F4", "F5", "F6", "F7", "F8"));
}

TEST_F(Toolbar, AClickAndAPressDoTheSame) {
    mTerminal.mText = "x";
    mControl->Toolbar1.Click("Clear");
    EXPECT_EQ(mTerminal.mText, "");
    mTerminal.mText = "x";
    mControl->PressToolbarKey("clear");
    EXPECT_EQ(mTerminal.mText, "");
    mTerminal.mText = "x";
    mControl->PressToolbarKey(3);
    EXPECT_EQ(mTerminal.mText, "");
    EXPECT_RAISED(mControl->PressToolbarKey(0), RtSubscript);
    EXPECT_RAISED(mControl->PressToolbarKey(19), RtSubscript);
    mTerminal.mText = "x";
    mControl->Toolbar1.SetEnabled(false);
    mControl->Toolbar1.Click("Clear");
    EXPECT_EQ(mTerminal.mText, "x");
}

TEST_F(Toolbar, AButtonThatTogglesFlipsWithEveryPress) {
    mControl->Toolbar1.SetStyle("Clear", ToolbarButtonStyle::Toggle);
    mControl->PressToolbarKey("Clear");
    EXPECT_TRUE(mControl->Toolbar1.Find("Clear")->pressed);
    mControl->Toolbar1.Click("Clear");
    EXPECT_FALSE(mControl->Toolbar1.Find("Clear")->pressed);
    mControl->PressToolbarKey("Copy");
    EXPECT_FALSE(mControl->Toolbar1.Find("Copy")->pressed);
}

TEST_F(Toolbar, AKeyWithoutABehaviourSaysSo) {
    mControl->PressToolbarKey("Nonsense");
    mControl->PressToolbarKey("");
    EXPECT_THAT(TextsOfBoxes(), ElementsAre("\r\nThis function is not implemented ",
                                            "\r\nThis function is not implemented "));
}

TEST_F(Toolbar, SettingsAndSearchAreReached) {
    Run();
    mControl->PressToolbarKey("CommSettings");
    EXPECT_EQ(mForms.mShown, 1);
    mControl->PressToolbarKey("Autoconnect");
    EXPECT_FALSE(mMessages.empty());
}

TEST_F(Toolbar, ATextMacroIsExpandedNamedAndSentAsItIs) {
    Show();
    mInputs.mAnswers = {"5"};
    Macro("0;PF &&?N&&;X<CR><lf><Cr>");
    EXPECT_EQ(TakeSent(), "PF 5;X\r\n<Cr>");
    mControl->PressToolbarKey("FunctionkeysSetup");
    Macro("0;PF &&N&&<CR>");
    EXPECT_EQ(TakeSent(), "PF 5\r") << "remembered for the control's life";
}

TEST_F(Toolbar, CopyAndPasteUseTheClipboard) {
    Show();
    mTerminal.mText = "A";
    mControl->PressToolbarKey("Copy");
    EXPECT_EQ(mClipboard.mText, "A");
    mControl->Toolbar1.Click("Paste");
    EXPECT_EQ(TakeSent(), "A");
}

TEST_F(Toolbar, EveryFunctionKeyHasItsMacroAndItsTip) {
    for (const std::string key : {"F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8"})
        SetMacro(key, "0;of " + key);
    Show();
    for (const std::string key : {"F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8"}) {
        EXPECT_EQ(mControl->Toolbar1.Find(key)->toolTip, "Text:\"of " + key + "\"");
        mControl->Toolbar1.Click(key);
        EXPECT_EQ(TakeSent(), "of " + key);
    }
}

TEST_F(Toolbar, NamesAreReplacedInAnswersAndNotInQuestions) {
    Show();
    mInputs.mAnswers = {"5<CR>"};
    bool turned = false;
    mLoop.After(0, [&] { turned = true; });
    Macro("0;&&?n\"How many <LF>?\"&&");
    EXPECT_EQ(mInputs.mBoxes[0].prompt, "How many <LF>?");
    EXPECT_EQ(TakeSent(), "5\r");
    EXPECT_TRUE(turned) << "the loop gets a turn after a box";
}

TEST_F(Toolbar, ATextMacroMaySendNul) {
    Show();
    Macro("0;a<NUL><nul>b");
    EXPECT_EQ(TakeSent(), std::string("a\0\0b", 4));
}

TEST_F(Toolbar, ABadMacroShowsABoxAndSendsNothing) {
    Show();
    Macro("0;PF &&N");
    EXPECT_THAT(TextsOfBoxes(), ElementsAre("Syntax Error, missing delimiter '&&'."));
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Toolbar, AKeyWithoutAMacroAndAnEmptyTextDoNothing) {
    Show();
    Macro("Nada");
    Macro("0;");
    Macro("7;x");
    mControl->PressToolbarKey("F8");
    EXPECT_EQ(TakeSent(), "");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Toolbar, AnEmptyTextDoesNotNeedThePort) {
    Run();
    Macro("0;");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    EXPECT_RAISED(Macro("0;x"), ErrPortNotOpen);
}

TEST_F(Toolbar, AFileMacroSendsTheRawBytesInPieces) {
    Show();
    std::string content("a\x1A\0b\r\n", 6);
    content += std::string(5000, 'x');
    mSerial.mDrainPerMs = 1; // 9600 baud
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    Macro("1;" + mFolder.Write("m.txt", content));
    EXPECT_EQ(TakeSent(), content);
}

TEST_F(Toolbar, AFileMacroOnTheSlowestLineDoesNotTimeOut) {
    Show();
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    const std::string content(6000, 'x');
    std::int32_t bytes = 0;
    mSerial.mDrainPerMs = 0;
    const auto timer = mLoop.StartTimer(5, [&] { mSerial.mDrainPerMs = ++bytes % 2 == 0 ? 0 : 1; });
    Macro("1;" + mFolder.Write("m.txt", content));
    EXPECT_EQ(TakeSent(), content);
}

TEST_F(Toolbar, AMissingFileShowsAWarning) {
    Show();
    Macro("1;/no/such/file");
    EXPECT_THAT(TextsOfBoxes(), ElementsAre("File '/no/such/file' not found."));
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Toolbar, ARunMacroStartsTheProgramOutsideOfAShell) {
    Run();
    Macro("2;\"/opt/my tool/run\" -a \"b c\";d");
    EXPECT_THAT(mLauncher.mRequests,
                ElementsAre(LaunchRequest{"/opt/my tool/run", {"-a", "b c;d"}, "/opt/my tool/"}));
    Macro("2;  ");
    EXPECT_EQ(mLauncher.mRequests.size(), 1U);
    mLauncher.mResult = {LaunchResult::Kind::NotFound, 2, "No such file or directory"};
    Macro("2;gone");
    EXPECT_THAT(TextsOfBoxes(), ElementsAre("Can't start 'gone'.\r\nNo such file or directory"));
}

TEST_F(Toolbar, UploadASendsTheChosenFile) {
    Show();
    mControl->PressToolbarKey("UploadA");
    EXPECT_EQ(TakeSent(), "");
    mFiles.mAnswers = {mFolder.Write("a.txt", "10 REM\r\n")};
    mControl->PressToolbarKey("UploadA");
    EXPECT_EQ(TakeSent(), "10 REM\r\n");
    const FileDialog& dialog = mFiles.mShown[0];
    EXPECT_EQ(dialog.kind, FileDialogKind::Open);
    EXPECT_EQ(dialog.title, "Select File to Send (Printer Recieves File).");
    EXPECT_THAT(dialog.filters, ElementsAre(FileFilter{"Text files (*.txt)", "*.txt"},
                                            FileFilter{"All Files (*.*)", "*.*"}));
    EXPECT_EQ(dialog.defaultExtension, ".txt");
    mFiles.mAnswers = {mFolder.Path()};
    EXPECT_RAISED(mControl->PressToolbarKey("UploadA"), RtFileNotFound);
}

TEST_F(Toolbar, DownloadAAsksOnlyAboutAFileWithBytes) {
    const std::string full = mFolder.Write("full.txt", "old");
    mFiles.mAnswers = {mFolder.File("new.txt"), mFolder.Write("empty.txt", ""), full, full};
    mDesktop.mAnswers = {MsgBoxResult::No, MsgBoxResult::Yes};
    mControl->PressToolbarKey("DownloadA");
    EXPECT_EQ(mTerminal.mCapture, mFolder.File("new.txt"));
    mControl->PressToolbarKey("DownloadA");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    mControl->PressToolbarKey("DownloadA");
    EXPECT_TRUE(mFolder.Has("full.txt"));
    EXPECT_EQ(mTerminal.mCapture, full);
    mControl->PressToolbarKey("DownloadA");
    EXPECT_FALSE(mFolder.Has("full.txt"));
    EXPECT_EQ(mDesktop.mBoxes[0].text,
              "Selected file is not empty. Do you want to clear the file?");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Question);
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::YesNo);
    EXPECT_EQ(mFiles.mShown[0].kind, FileDialogKind::Save);
    EXPECT_EQ(mFiles.mShown[0].title, "Select Destination File (Printer Sends File)");
    EXPECT_EQ(mFiles.mShown[0].defaultExtension, "txt");
    mTerminal.mCapture.clear();
    mControl->PressToolbarKey("DownloadA"); // cancelled
    EXPECT_EQ(mTerminal.mCapture, "");
}

TEST_F(Toolbar, TheTipsFollowTheSetupDialog) {
    Run();
    mForms.On<frmFunctionKeysSetup>([](frmFunctionKeysSetup& form) {
        form.pic1[2].txtAlt.Type("PRINT 1", 0);
        form.Command1[0].Click();
    });
    mControl->PressToolbarKey("FunctionkeysSetup");
    EXPECT_EQ(mControl->Toolbar1.Find("F3")->toolTip, "Text:\"PRINT 1\"");
    EXPECT_EQ(mControl->Toolbar1.Find("F1")->toolTip, "Text:\"\"");
}

TEST_F(Toolbar, NothingIsSentIntoARunningOperation) {
    Run();
    SetMacro("F1", "0;INTRUDER");
    mClipboard.mText = "INTRUDER";
    int tries = 0;
    mOnStatus = [&](std::string&, bool&) {
        ++tries;
        mControl->PressToolbarKey("F1");
        mControl->PasteCB();
    };
    EXPECT_TRUE(mControl->DoAutoconnect());
    EXPECT_GT(tries, 0);
    EXPECT_EQ(mSerial.mSent.find("INTRUDER"), std::string::npos);
    EXPECT_FALSE(mDesktop.mLog.empty());
}

} // namespace
} // namespace qncomm

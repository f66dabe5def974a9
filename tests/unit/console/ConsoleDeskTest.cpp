#include "console/ConsoleDesk.h"

#include "assembly/AllChannelKinds.h"
#include "common/HostPath.h"
#include "common/MemorySettings.h"
#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "dialogs/frmWaitForReboot.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "platform/SystemFiles.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <sstream>

#include <pty.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

class Desk : public ::testing::Test {
  protected:
    Desk() {
        int person = -1;
        int program = -1;
        if (::openpty(&person, &program, nullptr, nullptr, nullptr) != 0) throw 0;
        mPerson = Fd(person);
        mProgram = Fd(program);
    }

    /// A desk with nobody at it, or with a person at the terminal.
    ConsoleDesk& Nobody(GivenAnswer answer = GivenAnswer::None) { return Sit(-1, answer); }
    ConsoleDesk& APerson() { return Sit(mProgram.Get(), GivenAnswer::None); }
    void Type(std::string_view keys) const {
        ASSERT_EQ(::write(mPerson.Get(), keys.data(), keys.size()),
                  static_cast<ssize_t>(keys.size()));
    }

    std::string Answer(const InputBox& box) { return mDesk->Services().inputs.ShowInputBox(box); }
    std::optional<std::string> Choose(const FileDialog& dialog) {
        return mDesk->Services().files.ChooseFile(dialog);
    }

    Fd mPerson;
    Fd mProgram;
    PollLoop mLoop;
    std::ostringstream mErr;
    ScratchFolder mFolder;
    std::unique_ptr<ConsoleDesk> mDesk;

  private:
    ConsoleDesk& Sit(int input, GivenAnswer answer) {
        ConsoleDesk::Options options;
        options.input = input;
        options.answer = answer;
        mDesk = std::make_unique<ConsoleDesk>(mLoop, mErr, options);
        return *mDesk;
    }
};

TEST_F(Desk, AnInputBoxIsAnsweredAtTheTerminal) {
    APerson();
    Type("5 \xE2\x82\xAC \xE2\x98\x83\n");
    EXPECT_EQ(Answer({"How many?", "Input new value...", "3"}), "5 \x80 ?");
    EXPECT_EQ(mErr.str(), "How many? [3] ");
}

TEST_F(Desk, AnInputBoxTakesTheGivenAnswersInTheirOrderAndThenNone) {
    Nobody().Texts().Give("one");
    mDesk->Texts().Give("two");
    EXPECT_EQ(Answer({"A", "", ""}), "one");
    EXPECT_EQ(Answer({"B", "", ""}), "two");
    EXPECT_EQ(Answer({"C", "", "offered"}), "");
    EXPECT_EQ(mErr.str(), "A one\nB two\n") << "nobody is asked what nobody answers";
}

TEST_F(Desk, AFileDialogTakesAGivenPath) {
    FileDialog dialog;
    dialog.defaultExtension = ".txt";
    Nobody().Files().Give("/somewhere/a:b");
    mDesk->Files().Give("here");
    mDesk->Files().Give("it.dat");
    EXPECT_EQ(Choose(dialog), "/somewhere/a:b.txt") << "a colon is a letter like any other";
    EXPECT_EQ(Choose(dialog), PathIn(SystemFiles().CurrentFolder(), "here.txt"));
    EXPECT_EQ(Choose(dialog), PathIn(SystemFiles().CurrentFolder(), "it.dat"));
    EXPECT_EQ(Choose(dialog), std::nullopt);
}

TEST_F(Desk, AFileDialogAsksByItsTitle) {
    FileDialog dialog;
    dialog.title = "Select a file.";
    APerson();
    Type("here\n\x04");
    EXPECT_EQ(Choose(dialog), PathIn(SystemFiles().CurrentFolder(), "here"));
    EXPECT_EQ(mErr.str(), "Select a file: ");
    EXPECT_EQ(Choose(dialog), std::nullopt);
    EXPECT_EQ(mErr.str(), "Select a file: Select a file: \n") << "no answer ends the line";
}

TEST_F(Desk, AFileThatMustExistDoes) {
    FileDialog dialog;
    dialog.mustExist = true;
    const std::string path = mFolder.Write("there", "x");
    Nobody().Files().Give(path);
    EXPECT_EQ(Choose(dialog), path);
    mDesk->Files().Give(mFolder.File("gone"));
    EXPECT_EQ(Choose(dialog), std::nullopt);
    EXPECT_THAT(mErr.str(), HasSubstr("gone: there is no such file."));
}

TEST_F(Desk, ATypedPathThatExistsIsAskedAbout) {
    FileDialog dialog;
    dialog.kind = FileDialogKind::Save;
    dialog.confirmOverwrite = true;
    dialog.folder = mFolder.Path();
    const std::string path = mFolder.Write("there", "x");
    APerson();
    Type("there\nn\nthere\ny\nnew\n\n");
    EXPECT_EQ(Choose(dialog), std::nullopt);
    EXPECT_EQ(Choose(dialog), path);
    EXPECT_EQ(Choose(dialog), mFolder.File("new"));
    EXPECT_EQ(Choose(dialog), std::nullopt) << "an empty line is no file";
}

TEST_F(Desk, TheClipboardKeepsTextWithTheLinesEnds) {
    Clipboard& clipboard = Nobody().Services().clipboard;
    EXPECT_EQ(clipboard.Text(), "");
    clipboard.SetText("a\nb\r\nc");
    EXPECT_EQ(clipboard.Text(), "a\r\nb\r\nc");
}

TEST_F(Desk, ThereIsNoDialogForFunctionKeys) {
    frmFunctionKeysSetup form(std::make_shared<MemorySettings>(), Nobody().Services().files);
    mDesk->Forms().ShowModal(form);
    EXPECT_FALSE(form.IsOpen());
    EXPECT_THAT(mErr.str(), HasSubstr("qnctl macros"));
}

TEST_F(Desk, AFormThatNothingIsRegisteredForIsDeclinedByItsName) {
    struct UnknownForm : FormModel {
        UnknownForm() : FormModel("Paper Setup") {}
    } form;
    Nobody().Forms().ShowModal(form);
    EXPECT_FALSE(form.IsOpen());
    EXPECT_THAT(mErr.str(), HasSubstr("There is no dialog \"Paper Setup\" here."));
    EXPECT_EQ(mDesk->Forms().Show(form), nullptr);
}

TEST_F(Desk, ABinaryTransferAsksForItsFileAlone) {
    const std::string path = mFolder.Write("a.bin", "x");
    Nobody().Files().Give(path);
    mDesk->Forms().SetProtocol(BinaryZModem);
    frmBinaryTransfer form(PrinterReceives, BinaryKermit, mDesk->Boxes(), mDesk->Services().files,
                           SystemFiles());
    mDesk->Forms().ShowModal(form);
    EXPECT_TRUE(form.Accepted());
    EXPECT_EQ(form.Filename(), path);
    EXPECT_EQ(form.Protocol(), BinaryZModem);
    EXPECT_FALSE(form.IsOpen());
}

TEST_F(Desk, ABinaryTransferWithoutAFileOrOverOneThatStaysIsNotAccepted) {
    Nobody();
    frmBinaryTransfer none(PrinterReceives, BinaryKermit, mDesk->Boxes(), mDesk->Services().files,
                           SystemFiles());
    mDesk->Forms().ShowModal(none);
    EXPECT_FALSE(none.Accepted());
    EXPECT_FALSE(none.IsOpen());
    mDesk->Files().Give(mFolder.Write("kept", "x"));
    frmBinaryTransfer over(PrinterSends, BinaryKermit, mDesk->Boxes(), mDesk->Services().files,
                           SystemFiles());
    mDesk->Forms().ShowModal(over);
    EXPECT_FALSE(over.Accepted()) << "with nobody to ask the answer is no";
    EXPECT_FALSE(over.IsOpen());
}

TEST(RebootWindow, CreepsForwardAndGoesAway) {
    std::ostringstream err;
    StatusLine status(err, StatusLine::Style::Transient);
    PollLoop unused;
    LineReader input(unused, -1);
    ConsoleAsker asker(err, status, input);
    ConsoleForms forms(asker, status);
    ManualLoop loop;
    frmWaitForReboot form(loop);
    {
        const auto window = forms.Show(form);
        EXPECT_EQ(err.str(), "\rPrinter Reboot...\x1B[K");
        for (int second = 0; second < 15; ++second)
            loop.Yield(1000);
        EXPECT_THAT(err.str(), HasSubstr("[##########..........] 50 % Printer Reboot..."));
    }
    EXPECT_TRUE(err.str().ends_with("\r\x1B[K"));
}

TEST_F(Desk, AControlRunsOnIt) {
    ConsoleDesk& desk = Nobody();
    ControlAssembly::Options options;
    options.bindings = PortBindings(AllChannelKinds());
    ASSERT_EQ(options.bindings.Give(1, "sim:R7A"), "");
    ControlAssembly assembly(mLoop, desk.Services(), desk.View(), std::move(options));
    QNComm& control = assembly.Control();
    desk.Host().Hold(&control);
    auto settings = std::make_shared<MemorySettings>();
    settings->WriteValue("Settings", "Commport", "1");
    control.UserControl_ReadProperties(MemoryPropertyBag());
    control.SetRegSettings(settings);
    EXPECT_EQ(control.PrinterType(), "R7A");
    control.ShowCommSettings();
    EXPECT_THAT(mErr.str(), HasSubstr("There is no settings dialog here: choose the port with "
                                      "--port"));
    desk.Host().SetVisible(true);
    EXPECT_TRUE(assembly.Serial().PortOpen());
    control.cmdClose.Click();
    EXPECT_FALSE(assembly.Serial().PortOpen());
}

} // namespace
} // namespace qncomm::testing

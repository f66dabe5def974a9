// The desktop's file dialogs, and programs started beside this one.

#include "qt/QtServices.h"
#include "testing/core/ScratchFolder.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <cerrno>

namespace qncomm {
namespace {

using testing::ContentOf;
using ::testing::HasSubstr;
using testing::OnModal;
using testing::ScratchFolder;

class HostFiles : public ::testing::Test {
  protected:
    QWidget mHost;
    QtServices mServices{&mHost};
};

class Files : public HostFiles {
  protected:
    Files() {
        // The toolkit's own dialog is the one that a test can type in.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    }

    /// The user types a name and presses Enter; act looks at the dialog before.
    static void Choose(const std::string& name, std::function<void(QFileDialog&)> act = {}) {
        OnModal([name, act](QWidget& window) {
            auto& dialog = dynamic_cast<QFileDialog&>(window);
            if (act) act(dialog);
            auto& edit = testing::Named<QLineEdit>(window, "fileNameEdit");
            edit.setText(QString::fromStdString(name));
            QTest::keyClick(&edit, Qt::Key_Return);
        });
    }

    ScratchFolder mFolder;
};

TEST_F(Files, AnOpenDialogHasTitleFiltersAndFolderAndReturnsTheWholePath) {
    const std::string path = mFolder.Write("a.txt", "x");
    Choose("a.txt", [&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Select File to Send"_qs);
        EXPECT_EQ(dialog.nameFilters(),
                  (QStringList{u"Text files (*.txt)"_qs, u"All Files (*)"_qs}));
        EXPECT_EQ(dialog.directory().absolutePath().toStdString(), mFolder.Path());
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
    });
    EXPECT_EQ(mServices.files.ChooseFile(
                  {.title = "Select File to Send",
                   .filters = {{"Text files (*.txt)", "*.txt"}, {"All Files (*.*)", "*.*"}},
                   .folder = mFolder.Path(),
                   .defaultExtension = {},
                   .mustExist = true}),
              path);
}

TEST_F(Files, ACancelledDialogReturnsNothing) {
    OnModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(mServices.files.ChooseFile(
                  {.title = {}, .filters = {}, .folder = mFolder.Path(), .defaultExtension = {}}),
              std::nullopt);
}

TEST_F(Files, AnOpenedNameGetsTheExtensionOnlyWhenTheFileExistsSo) {
    const std::string with = mFolder.Write("label.txt", "x");
    const std::string without = mFolder.Write("README", "x");
    const FileDialog open{.title = {},
                          .filters = {},
                          .folder = mFolder.Path(),
                          .defaultExtension = ".txt",
                          .mustExist = true};
    Choose("label");
    EXPECT_EQ(mServices.files.ChooseFile(open), with);
    Choose("README");
    EXPECT_EQ(mServices.files.ChooseFile(open), without);
}

TEST_F(Files, AFileThatMustExistIsAskedForAgain) {
    const std::string path = mFolder.Write("label.txt", "x");
    mFolder.Write("label.old.txt", "x"); // a name with a point has its extension already
    Choose("label.old");
    auto dialog = FileDialog{.title = {},
                             .filters = {},
                             .folder = mFolder.Path(),
                             .defaultExtension = ".txt",
                             .mustExist = true};
    // The first dialog is followed by a box, the box by a second dialog.
    QTimer after;
    after.setInterval(0);
    int boxes = 0;
    QObject::connect(&after, &QTimer::timeout, &after, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible()) return;
        ++boxes;
        EXPECT_THAT(box->text().toStdString(), HasSubstr("label.old'"));
        Choose("label.txt");
        box->accept();
        after.stop();
    });
    after.start();
    EXPECT_EQ(mServices.files.ChooseFile(dialog), path);
    EXPECT_EQ(boxes, 1);
}

TEST_F(Files, ASavedNameGetsTheExtensionItLacks) {
    const FileDialog save{.kind = FileDialogKind::Save,
                          .title = {},
                          .filters = {},
                          .folder = mFolder.Path(),
                          .defaultExtension = "txt"};
    Choose("out", [](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    });
    EXPECT_EQ(mServices.files.ChooseFile(save), mFolder.File("out.txt"));
    Choose("out.dat");
    EXPECT_EQ(mServices.files.ChooseFile(save), mFolder.File("out.dat"));
}

TEST_F(Files, AnExistingFileIsAskedAboutWhenSaving) {
    const std::string path = mFolder.Write("out.txt", "x");
    FileDialog save{.kind = FileDialogKind::Save,
                    .title = {},
                    .filters = {},
                    .folder = mFolder.Path(),
                    .defaultExtension = {},
                    .confirmOverwrite = true};
    Choose("out.txt", [](QFileDialog&) {
        OnModal([](QWidget& box) {
            QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes),
                              Qt::LeftButton);
        });
    });
    EXPECT_EQ(mServices.files.ChooseFile(save), path);
}

TEST_F(Files, ANewFileIsAskedAboutWhenThatIsWanted) {
    Choose("new.bin", [](QFileDialog&) {
        QTimer::singleShot(0, qApp, [] {
            OnModal([](QWidget& box) {
                QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes),
                                  Qt::LeftButton);
            });
        });
    });
    EXPECT_EQ(mServices.files.ChooseFile({.kind = FileDialogKind::Save,
                                          .title = {},
                                          .filters = {},
                                          .folder = mFolder.Path(),
                                          .defaultExtension = {},
                                          .confirmCreate = true}),
              mFolder.File("new.bin"));
    EXPECT_FALSE(mFolder.Has("new.bin"));
}

class Programs : public HostFiles {
  protected:
    /// A program that writes its folder and its arguments, one a line, then says that it is done.
    std::string Recorder() {
        const std::string out = mFolder.File("said");
        const std::string path =
            mFolder.Write("record me", "#!/bin/sh\n"
                                       "{ pwd; printf '%s\\n' \"$@\"; } > '"
                                           + out + ".new'\nmv '" + out + ".new' '" + out + "'\n");
        QFile::setPermissions(QString::fromStdString(path),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    std::string Said() {
        EXPECT_TRUE(QTest::qWaitFor([&] { return mFolder.Has("said"); }));
        return ContentOf(mFolder.File("said"));
    }

    ScratchFolder mFolder;
};

TEST_F(Programs, AreStartedWithTheirArgumentsAsTheyStandAndInTheirFolder) {
    const LaunchResult result =
        mServices.launcher.Launch({.program = Recorder(),
                                   .arguments = {"two words", "$HOME", "a;b", "\xC3\xA4", ""},
                                   .folder = mFolder.Path()});
    EXPECT_EQ(result.kind, LaunchResult::Kind::Started);
    EXPECT_EQ(result.text, "");
    EXPECT_EQ(Said(), mFolder.Path() + "\ntwo words\n$HOME\na;b\n\xC3\xA4\n\n");
}

TEST_F(Programs, AreFoundOnTheSearchPath) {
    const std::string path = mFolder.File("made");
    const LaunchResult result =
        mServices.launcher.Launch({.program = "touch", .arguments = {path}, .folder = {}});
    EXPECT_EQ(result.kind, LaunchResult::Kind::Started);
    EXPECT_TRUE(QTest::qWaitFor([&] { return mFolder.Has("made"); }));
}

TEST_F(Programs, ThatAreNotThereOrMayNotRunSaySo) {
    LaunchResult result =
        mServices.launcher.Launch({.program = "no-such-program", .arguments = {}, .folder = {}});
    EXPECT_EQ(result.kind, LaunchResult::Kind::NotFound);
    EXPECT_EQ(result.systemError, ENOENT);
    EXPECT_THAT(result.text, HasSubstr("no-such-program"));

    result = mServices.launcher.Launch(
        {.program = mFolder.File("absent"), .arguments = {}, .folder = {}});
    EXPECT_EQ(result.kind, LaunchResult::Kind::NotFound);

    const std::string text = mFolder.Write("text", "not a program");
    result = mServices.launcher.Launch({.program = text, .arguments = {}, .folder = {}});
    EXPECT_EQ(result.kind, LaunchResult::Kind::Refused);
    EXPECT_EQ(result.systemError, EACCES);

    result = mServices.launcher.Launch(
        {.program = Recorder(), .arguments = {}, .folder = mFolder.File("absent")});
    EXPECT_EQ(result.kind, LaunchResult::Kind::Refused);
    EXPECT_EQ(result.systemError, ENOENT);
    EXPECT_THAT(result.text, HasSubstr(mFolder.File("absent")));
}

} // namespace
} // namespace qncomm

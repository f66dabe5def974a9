#include "common/FileDialog.h"

#include "platform/SystemFiles.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;
using Next = FileChoice::Next;

class ChosenFiles : public ::testing::Test {
  protected:
    FileDialog Dialog(FileDialogKind kind, const char* extension = "") const {
        FileDialog dialog;
        dialog.kind = kind;
        dialog.defaultExtension = extension;
        return dialog;
    }
    ScratchFolder mFolder;
};

TEST_F(ChosenFiles, GetTheExtensionTheyLack) {
    for (const char* extension : {"txt", ".txt"}) {
        const FileDialog save = Dialog(FileDialogKind::Save, extension);
        EXPECT_EQ(WithDefaultExtension(save, "/a.b/c", SystemFiles()), "/a.b/c.txt");
        EXPECT_EQ(WithDefaultExtension(save, "/a/c.dat", SystemFiles()), "/a/c.dat");
        EXPECT_EQ(WithDefaultExtension(save, "/a/c.", SystemFiles()), "/a/c.");
    }
    EXPECT_EQ(WithDefaultExtension(Dialog(FileDialogKind::Save), "/a/c", SystemFiles()), "/a/c");
}

TEST_F(ChosenFiles, AreOpenedAsTheyAreTypedWhenTheyExistSo) {
    const std::string path = mFolder.Write("README", "x");
    EXPECT_EQ(WithDefaultExtension(Dialog(FileDialogKind::Open, "txt"), path, SystemFiles()), path);
    EXPECT_EQ(WithDefaultExtension(Dialog(FileDialogKind::Save, "txt"), path, SystemFiles()),
              path + ".txt");
}

TEST_F(ChosenFiles, ThatMustExistAreRefusedWhenTheyDoNot) {
    FileDialog open = Dialog(FileDialogKind::Open, "txt");
    EXPECT_EQ(JudgeChoice(open, mFolder.File("f"), SystemFiles()).next, Next::Take);
    open.mustExist = true;
    const FileChoice refused = JudgeChoice(open, mFolder.File("f"), SystemFiles());
    EXPECT_EQ(refused.next, Next::Refuse);
    EXPECT_EQ(refused.path, mFolder.File("f.txt"));
    mFolder.Write("f.txt", "x");
    EXPECT_EQ(JudgeChoice(open, mFolder.File("f"), SystemFiles()).next, Next::Take);
    open.kind = FileDialogKind::Save;
    EXPECT_EQ(JudgeChoice(open, mFolder.File("g"), SystemFiles()).next, Next::Take);
}

TEST_F(ChosenFiles, AreAskedAboutAsTheDialogWants) {
    FileDialog save = Dialog(FileDialogKind::Save, "txt");
    const std::string old = mFolder.Write("old.txt", "x");
    EXPECT_EQ(JudgeChoice(save, mFolder.File("old"), SystemFiles()).next, Next::Take);
    EXPECT_EQ(JudgeChoice(save, mFolder.File("new"), SystemFiles()).next, Next::Take);
    save.confirmOverwrite = true;
    EXPECT_EQ(JudgeChoice(save, mFolder.File("new"), SystemFiles()).next, Next::Take);
    const FileChoice replace = JudgeChoice(save, mFolder.File("old"), SystemFiles());
    EXPECT_EQ(replace.next, Next::Ask);
    EXPECT_EQ(replace.path, old);
    EXPECT_THAT(replace.question, HasSubstr("'" + old + "' already exists."));
    save = Dialog(FileDialogKind::Save, "txt");
    save.confirmCreate = true;
    EXPECT_EQ(JudgeChoice(save, mFolder.File("old"), SystemFiles()).next, Next::Take);
    const FileChoice create = JudgeChoice(save, mFolder.File("new"), SystemFiles());
    EXPECT_EQ(create.next, Next::Ask);
    EXPECT_THAT(create.question, HasSubstr("'" + mFolder.File("new.txt") + "' does not exist."));
}

} // namespace
} // namespace qncomm::testing

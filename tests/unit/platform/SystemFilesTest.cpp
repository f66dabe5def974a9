#include "platform/SystemFiles.h"

#include "common/HostPath.h"
#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <tuple>

#include <sys/stat.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

class FilesOfThisMachine : public ::testing::Test {
  protected:
    ScratchFolder mFolder;
    HostFiles& mFiles = SystemFiles();
};

TEST_F(FilesOfThisMachine, AreReadByteForByte) {
    const std::string bytes("\0\r\n\x1A\xFF", 5);
    const auto file = mFiles.Open(mFolder.Write("f", bytes));
    EXPECT_EQ(file->Length(), 5U);
    EXPECT_EQ(file->Read(2), bytes.substr(0, 2));
    EXPECT_EQ(file->Read(3), bytes.substr(2));
    EXPECT_EQ(file->ReadSome(1), "");
    EXPECT_RAISED(std::ignore = file->Read(1), 62);
}

TEST_F(FilesOfThisMachine, ThatCannotBeReadAreTheRuntimesError) {
    EXPECT_RAISED(std::ignore = mFiles.Open(mFolder.File("none")), 53);
    EXPECT_RAISED(std::ignore = mFiles.Open(mFolder.File("none/f")), 53);
    EXPECT_RAISED(std::ignore = mFiles.Open(mFolder.File("")), 75);
    mFolder.Write("f", "x");
    EXPECT_RAISED(std::ignore = mFiles.Open(mFolder.File("f/g")), 75) << "a file is no folder";
}

TEST_F(FilesOfThisMachine, AreOpenedOnlyWhenTheyAreRegular) {
    EXPECT_RAISED(std::ignore = mFiles.Open(mFolder.Path()), 75);
    EXPECT_RAISED(std::ignore = mFiles.Open("/dev/zero"), 75);
    const std::string pipe = mFolder.File("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_RAISED(std::ignore = mFiles.Open(pipe), 75) << "nobody writes to it: it must not block";
}

TEST_F(FilesOfThisMachine, ThatAreReadInBlocksEndWithAnEmptyOne) {
    const auto file = mFiles.Open(mFolder.Write("f", "abcde"));
    std::ofstream(mFolder.File("f"), std::ios::app) << "fg";
    EXPECT_EQ(file->ReadSome(4), "abcd");
    EXPECT_EQ(file->ReadSome(4), "efg") << "a file that has grown since is read to its end";
    EXPECT_EQ(file->ReadSome(4), "");
}

TEST_F(FilesOfThisMachine, AreReplacedWhole) {
    mFolder.Write("f", "a longer text than the new one");
    mFiles.Save(mFolder.File("f"), "new");
    EXPECT_EQ(mFolder.Read("f"), "new");
    mFiles.Save(mFolder.File("g"), "");
    EXPECT_EQ(mFolder.Read("g"), "");
    EXPECT_EQ(mFolder.Count(), 2U) << "nothing is left beside them";
}

TEST_F(FilesOfThisMachine, StayWholeForAReaderOfTheOldOne) {
    std::ifstream reader(mFolder.Write("f", "the old text"), std::ios::binary);
    mFiles.Save(mFolder.File("f"), "new");
    const std::string read{std::istreambuf_iterator<char>(reader), {}};
    EXPECT_EQ(read, "the old text");
}

TEST_F(FilesOfThisMachine, KeepTheirPermissionsAndWhatLinksToThem) {
    mFolder.Write("f", "old");
    const auto owner = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(mFolder.File("f"), owner);
    fs::create_symlink("f", mFolder.File("link"));
    mFiles.Save(mFolder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(mFolder.File("link")));
    EXPECT_EQ(mFolder.Read("f"), "new");
    EXPECT_EQ(fs::status(mFolder.File("f")).permissions(), owner);
}

TEST_F(FilesOfThisMachine, AreNotWrittenOverAnotherFileOnTheWay) {
    mFolder.Write("f.new", "someone else's");
    mFiles.Save(mFolder.File("f"), "mine");
    EXPECT_EQ(mFolder.Read("f.new"), "someone else's");
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(FilesOfThisMachine, ThatCannotBeWrittenAreTheRuntimesErrorAndStay) {
    EXPECT_RAISED(mFiles.Save(mFolder.File("none/f"), "x"), 76);
    EXPECT_RAISED(mFiles.Save(mFolder.File(""), "x"), 75);
    EXPECT_RAISED(mFiles.Save("", "x"), 76);
    mFolder.Write("f", "old");
    EXPECT_RAISED(mFiles.Save(mFolder.File("f/g"), "x"), 75);
    EXPECT_EQ(mFolder.Read("f"), "old");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(FilesOfThisMachine, ThatAreDevicesAreWrittenTo) {
    mFiles.Save("/dev/null", "x");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_RAISED(mFiles.Save("/dev/full", "x"), 61);
}

TEST_F(FilesOfThisMachine, OnAFileSystemThatRefusesAreTheRuntimesErrorAndStay) {
    EXPECT_RAISED(mFiles.Save("/proc/version", "x"), 75);
}

TEST_F(FilesOfThisMachine, ExistWhenTheyAreRegular) {
    EXPECT_FALSE(mFiles.Exists(mFolder.Path()));
    EXPECT_FALSE(mFiles.Exists("/no/such/file"));
    EXPECT_TRUE(mFiles.Exists("/proc/self/exe")) << "a link counts as what it leads to";
}

TEST_F(FilesOfThisMachine, HaveASize) {
    EXPECT_EQ(mFiles.Size(mFolder.Write("f", "abc")), 3U);
    EXPECT_EQ(mFiles.Size(mFolder.Path()), 0U);
    EXPECT_EQ(mFiles.Size(mFolder.File("missing")), 0U);
}

TEST_F(FilesOfThisMachine, ThatCouldBeMadeLeaveNothingBehindAndTouchNothing) {
    EXPECT_TRUE(mFiles.CanCreate(mFolder.File("new")));
    EXPECT_TRUE(mFolder.IsEmpty());
    const std::string there = mFolder.Write("there", "abc");
    EXPECT_FALSE(mFiles.CanCreate(there));
    EXPECT_EQ(mFolder.Read("there"), "abc");
    EXPECT_FALSE(mFiles.CanCreate(mFolder.Path()));
    EXPECT_FALSE(mFiles.CanCreate(mFolder.File("no/such/folder")));
    fs::create_symlink(mFolder.File("nowhere"), mFolder.File("link"));
    EXPECT_FALSE(mFiles.CanCreate(mFolder.File("link")));
    EXPECT_TRUE(fs::is_symlink(mFolder.File("link")));
}

TEST_F(FilesOfThisMachine, AreDeletedOrSayWhatIsWrong) {
    const std::string path = mFolder.Write("f", "abc");
    mFiles.Delete(path);
    EXPECT_FALSE(mFolder.Has("f"));
    EXPECT_RAISED(mFiles.Delete(path), RtFileNotFound);
    fs::create_directory(mFolder.File("d"));
    mFolder.Write("d/f", "abc");
    EXPECT_RAISED(mFiles.Delete(mFolder.File("d")), RtPathFileAccess);
}

TEST_F(FilesOfThisMachine, AreNamedFromTheCurrentFolder) {
    EXPECT_TRUE(IsAbsolutePath(mFiles.CurrentFolder()));
}

} // namespace
} // namespace qncomm::testing

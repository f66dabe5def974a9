#include "HostFile.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

class HostFiles : public ::testing::Test {
  protected:
    ScratchFolder mFolder;
};

TEST_F(HostFiles, AreReadByteForByte) {
    const std::string bytes("\0\r\n\x1A\xFF", 5);
    HostFile file(mFolder.Write("f", bytes));
    EXPECT_EQ(file.Length(), 5U);
    EXPECT_EQ(file.Read(2), bytes.substr(0, 2));
    EXPECT_EQ(file.Read(3), bytes.substr(2));
    EXPECT_RAISED(file.Read(1), 62);
}

TEST_F(HostFiles, ThatCannotBeReadAreTheRuntimesError) {
    EXPECT_RAISED(HostFile(mFolder.File("none")), 53);
    EXPECT_RAISED(HostFile(mFolder.File("none/f")), 53);
    EXPECT_RAISED(HostFile(mFolder.File("")), 75);
    mFolder.Write("f", "x");
    EXPECT_RAISED(HostFile(mFolder.File("f/g")), 75) << "a file is no folder";
}

TEST_F(HostFiles, AreReplacedWhole) {
    mFolder.Write("f", "a longer text than the new one");
    WriteHostFile(mFolder.File("f"), "new");
    EXPECT_EQ(mFolder.Read("f"), "new");
    WriteHostFile(mFolder.File("g"), "");
    EXPECT_EQ(mFolder.Read("g"), "");
    EXPECT_EQ(mFolder.Count(), 2U) << "nothing is left beside them";
}

TEST_F(HostFiles, StayWholeForWhoeverReadsTheOldOne) {
    std::ifstream reader(mFolder.Write("f", "the old text"), std::ios::binary);
    WriteHostFile(mFolder.File("f"), "new");
    const std::string read{std::istreambuf_iterator<char>(reader), {}};
    EXPECT_EQ(read, "the old text");
}

TEST_F(HostFiles, KeepTheirPermissionsAndWhatLinksToThem) {
    mFolder.Write("f", "old");
    const auto owner = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(mFolder.File("f"), owner);
    fs::create_symlink("f", mFolder.File("link"));
    WriteHostFile(mFolder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(mFolder.File("link")));
    EXPECT_EQ(mFolder.Read("f"), "new");
    EXPECT_EQ(fs::status(mFolder.File("f")).permissions(), owner);
}

TEST_F(HostFiles, AreNotWrittenOverAnotherFileOnTheWay) {
    mFolder.Write("f.new", "someone else's");
    WriteHostFile(mFolder.File("f"), "mine");
    EXPECT_EQ(mFolder.Read("f.new"), "someone else's");
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(HostFiles, ThatCannotBeWrittenAreTheRuntimesErrorAndStay) {
    EXPECT_RAISED(WriteHostFile(mFolder.File("none/f"), "x"), 76);
    EXPECT_RAISED(WriteHostFile(mFolder.File(""), "x"), 75);
    EXPECT_RAISED(WriteHostFile("", "x"), 76);
    mFolder.Write("f", "old");
    EXPECT_RAISED(WriteHostFile(mFolder.File("f/g"), "x"), 75);
    EXPECT_EQ(mFolder.Read("f"), "old");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(HostFiles, ThatAreDevicesAreWrittenTo) {
    WriteHostFile("/dev/null", "x");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_RAISED(WriteHostFile("/dev/full", "x"), 61);
}

TEST_F(HostFiles, OnAFileSystemThatRefusesAreTheRuntimesErrorAndStay) {
    EXPECT_RAISED(WriteHostFile("/proc/version", "x"), 75);
}

} // namespace
} // namespace qncomm::testing

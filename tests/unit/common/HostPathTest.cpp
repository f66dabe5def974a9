#include "common/HostPath.h"

#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qncomm {
namespace {

using testing::ScratchFolder;

TEST(HostPath, ANameIsJoinedToItsFolderWithOneSeparator) {
    EXPECT_EQ(PathIn("/a", "b"), "/a/b");
    EXPECT_EQ(PathIn("/a/", "b"), "/a/b");
    EXPECT_EQ(PathIn("/", "b"), "/b");
    EXPECT_EQ(PathIn("/a", "/b"), "/b");
    EXPECT_EQ(PathIn("", "b"), "b");
    EXPECT_EQ(PathIn("/a", "card1:b"), "/a/card1:b");
}

TEST(HostPath, TheFolderEndsWithItsSeparator) {
    EXPECT_EQ(FolderOf("/a/b.txt"), "/a/");
    EXPECT_EQ(FolderOf("/b.txt"), "/");
    EXPECT_EQ(FolderOf("b.txt"), "");
    EXPECT_TRUE(IsAbsolutePath(CurrentFolder()));
}

TEST(HostPath, TheSizeOfWhatIsNoFileIsNothing) {
    const ScratchFolder folder;
    EXPECT_EQ(FileSize(folder.Write("f", "abc")), 3U);
    EXPECT_EQ(FileSize(folder.Path()), 0U);
    EXPECT_EQ(FileSize(folder.File("missing")), 0U);
}

TEST(HostPath, TryingToCreateAFileLeavesNothingBehindAndTouchesNothing) {
    const ScratchFolder folder;
    EXPECT_TRUE(CanCreateFile(folder.File("new")));
    EXPECT_TRUE(folder.IsEmpty());
    const std::string there = folder.Write("there", "abc");
    EXPECT_FALSE(CanCreateFile(there));
    EXPECT_EQ(testing::ContentOf(there), "abc");
    EXPECT_FALSE(CanCreateFile(folder.Path()));
    EXPECT_FALSE(CanCreateFile(folder.File("no/such/folder")));
    std::filesystem::create_symlink(folder.File("nowhere"), folder.File("link"));
    EXPECT_FALSE(CanCreateFile(folder.File("link")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link")));
}

TEST(HostPath, DeletingSaysWhatIsWrong) {
    const ScratchFolder folder;
    const std::string path = folder.Write("f", "abc");
    DeleteFile(path);
    EXPECT_FALSE(folder.Has("f"));
    EXPECT_RAISED(DeleteFile(path), RtFileNotFound);
    std::filesystem::create_directory(folder.File("d"));
    folder.Write("d/f", "abc");
    EXPECT_RAISED(DeleteFile(folder.File("d")), RtPathFileAccess);
}

} // namespace
} // namespace qncomm

#include "common/HostPath.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

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
    EXPECT_TRUE(IsAbsolutePath("/b.txt"));
    EXPECT_FALSE(IsAbsolutePath("b.txt"));
}

} // namespace
} // namespace qncomm
